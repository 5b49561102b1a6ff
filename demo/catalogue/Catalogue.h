#pragma once

// Every picture of the demo database: its name, where it belongs, and how it is drawn. Pictures are drawn
// when asked for, one at a time.

#include <functional>
#include <string>
#include <vector>

#include "demo/Canvas.h"

namespace Demo {

struct Picture {
    std::string category;
    std::string name;
    bool hasAlpha = false;
    std::function<CCanvas()> draw;
};

/// Collects the pictures of one category.
class CCategoryPictures {
public:
    CCategoryPictures(std::vector<Picture>& pictures, std::string category)
        : m_rPictures(pictures), m_sCategory(std::move(category))
    {
    }

    void Opaque(std::string name, std::function<CCanvas()> draw)
    {
        m_rPictures.push_back({m_sCategory, std::move(name), false, std::move(draw)});
    }
    void Alpha(std::string name, std::function<CCanvas()> draw)
    {
        m_rPictures.push_back({m_sCategory, std::move(name), true, std::move(draw)});
    }

private:
    std::vector<Picture>& m_rPictures;
    std::string m_sCategory;
};

void AddDefaults(std::vector<Picture>& pictures);
void AddBuildings(std::vector<Picture>& pictures);
void AddRoads(std::vector<Picture>& pictures);
void AddNature(std::vector<Picture>& pictures);
void AddVehicles(std::vector<Picture>& pictures);
void AddSigns(std::vector<Picture>& pictures);
void AddInteriors(std::vector<Picture>& pictures);
void AddEffects(std::vector<Picture>& pictures);
void AddRadar(std::vector<Picture>& pictures);

/// All of the above, in this order; the pictures of a category stand together.
std::vector<Picture> AllPictures();

}  // namespace Demo
