#include "database/TextureCategory.h"

#include <string_view>

#include "base/Text.h"
#include "database/CategoryLine.h"
#include "database/TextScan.h"
#include "database/TextureEntry.h"

namespace {

// `rest` begins at the key. The value stays as it was when the key or a number is not there.
void ScanValue(std::string_view rest, std::string_view key, std::int32_t& value)
{
    if (!rest.starts_with(key))
        return;
    if (const auto number = ScanDecimal(rest.substr(key.size())))
        value = *number;
}

}  // namespace

ParsedCategory ReadCategoryLine(std::string_view line)
{
    ParsedCategory parsed;
    TextureCategory& category = parsed.category;
    std::size_t at = 0;
    while (at < line.size()) {
        const std::string_view rest = line.substr(at);
        switch (rest.front()) {
            case 'c':
                ScanValue(rest, "cat=", category.cat);
                at += 5;
                break;
            case 'd':
                if (rest.size() > 7 && rest[7] == 'f')
                    ScanValue(rest, "defaultformat=", category.defaultformat);
                else
                    ScanValue(rest, "defaultstream=", category.defaultstream);
                at += 15;
                break;
            case 'f':
                ScanValue(rest, "fast=", category.fast);
                at += 6;
                break;
            case 'n': {
                const std::string_view name = rest.starts_with("name=") ? ScanWord(rest.substr(5)) : "";
                if (!name.empty()) {
                    category.name = Widen(name.substr(0, kLongestName));
                    parsed.nameWasCut = name.size() > kLongestName;
                }
                at += 5 + name.size();
                break;
            }
            case 'o':
                ScanValue(rest, "onfoot=", category.onfoot);
                at += 8;
                break;
            case 's':
                ScanValue(rest, "slow=", category.slow);
                at += 6;
                break;
            default:
                ++at;
        }
    }
    return parsed;
}

TextureCategory ParseCategoryLine(std::string_view line)
{
    return ReadCategoryLine(line).category;
}

std::string CategoryLine(const TextureCategory& category)
{
    std::string line = "cat=" + std::to_string(category.cat) + " name=" + Narrow(category.name);
    line += " onfoot=" + std::to_string(category.onfoot);
    line += " slow=" + std::to_string(category.slow);
    line += " fast=" + std::to_string(category.fast);
    // Deliberate: defaultformat is left out only together with a defaultstream of 0, which itself is always
    // written.
    if (category.defaultformat != 0 || category.defaultstream != 0)
        line += " defaultformat=" + std::to_string(category.defaultformat);
    line += " defaultstream=" + std::to_string(category.defaultstream);
    return line;
}
