#include <vgwctl/command/Command.h>
#include <vgwctl/help/HelpText.h>

#include <gtest/gtest.h>

namespace {

using namespace Vgwctl;

TEST(Help, ManPageAndCompletionsTellOfEveryCommand) {
    std::string const help = commandHelp();
    std::string const page = manPage();
    std::string const bash = bashCompletion();
    std::string const zsh = zshCompletion();
    for (Command const& command : commands()) {
        std::string const name(command.name);
        EXPECT_NE(help.find(name), std::string::npos) << name;
        EXPECT_NE(help.find(std::string(command.summary)), std::string::npos) << name;
        EXPECT_NE(bash.find("\n    " + name + ") kinds="), std::string::npos) << name;
        EXPECT_NE(zsh.find("\n    " + name + ") kinds="), std::string::npos) << name;
        std::string escaped;
        for (char const c : name) escaped += c == '-' ? "\\-" : std::string(1, c);
        EXPECT_NE(page.find(escaped), std::string::npos) << name;
    }
    EXPECT_EQ(zsh.find("#compdef vgwctl\n"), 0U);
}

TEST(Help, EveryCommandSaysWhatItsOperandsAre) {
    for (Command const& command : commands()) {
        EXPECT_FALSE(command.summary.empty()) << command.name;
        EXPECT_NE(command.summary.back(), '.') << command.name;
        EXPECT_LE(command.least, command.most) << command.name;
        EXPECT_EQ(command.operands.empty(), command.most == 0) << command.name;
        EXPECT_LE(command.kinds.find_first_not_of("PACTOF*"), std::string_view::npos);
    }
}

}  // namespace
