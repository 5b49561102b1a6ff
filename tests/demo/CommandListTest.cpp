#include "demo/CommandList.h"

#include <gtest/gtest.h>
#include <set>
#include <sstream>

namespace {

using Demo::DatabaseCommands;
using Demo::Picture;

std::vector<std::string> WordsOf(const std::string& command)
{
    std::istringstream in(command);
    std::vector<std::string> words;
    for (std::string word; in >> word;)
        words.push_back(word);
    return words;
}

TEST(DemoCommands, ImportsEveryCategoryWithItsOpaquePicturesFirst)
{
    const std::vector<Picture> pictures = {{"Default", "white", false, {}},
                                           {"signs", "stop", true, {}},
                                           {"signs", "exit", false, {}},
                                           {"signs", "yield", true, {}}};
    const std::vector<std::string> commands = DatabaseCommands(pictures);
    ASSERT_GE(commands.size(), 4U);
    EXPECT_EQ(commands[0], "category add signs");
    EXPECT_EQ(commands[1], "import Default/opaque/white.png --category Default --no-alpha");
    EXPECT_EQ(commands[2], "import signs/opaque/exit.png --category signs --no-alpha");
    EXPECT_EQ(commands[3], "import signs/alpha/stop.png signs/alpha/yield.png --category signs --alpha");
}

TEST(DemoCommands, NameOnlyPicturesThatExist)
{
    std::set<std::string> names;
    for (const Picture& picture : Demo::AllPictures())
        names.insert(picture.name);
    int aliases = 0;
    for (const std::string& command : DatabaseCommands(Demo::AllPictures())) {
        const std::vector<std::string> words = WordsOf(command);
        if (words[0] == "alias") {
            EXPECT_TRUE(names.contains(words[1])) << command;
            EXPECT_TRUE(names.insert(words[2]).second) << command;
            ++aliases;
        }
        if (words[0] == "set") {
            EXPECT_TRUE(names.contains(words[1])) << command;
        }
    }
    EXPECT_EQ(aliases, 20);
}

TEST(DemoCommands, GiveEverySiblingItsBase)
{
    std::set<std::string> names;
    for (const Picture& picture : Demo::AllPictures())
        names.insert(picture.name);
    for (const std::string& command : DatabaseCommands(Demo::AllPictures())) {
        const std::vector<std::string> words = WordsOf(command);
        if (words.size() == 3 && words[2] == "hassibling=1") {
            EXPECT_TRUE(names.contains(words[1].substr(0, words[1].rfind('_'))) ||
                        names.contains(words[1] + "_night") || names.contains(words[1] + "_wet"))
                << command;
        }
    }
}

}  // namespace
