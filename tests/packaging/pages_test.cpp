#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdexcept>

#include "app/command_line.h"
#include "driver/settings_reader.h"
#include "packaging/completion_words.h"
#include "packaging/completions.h"
#include "packaging/roff.h"

namespace quillon {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

/// A program with one command of each kind.
CommandDescription SmallProgram() {
    CommandDescription show;
    show.name = "quillon show";
    show.summary = "Show it's [all]: now";
    show.options = {{{"-m", "--mode"}, "fast|slow", {"fast", "slow"}, "How", true, false},
                    {{"--to"}, "DIR", {}, "Where", false, false},
                    {{"--count"}, "N", {}, "How often", false, false}};
    show.arguments = {{{"FILE"}, "", {}, "What", true, false}};
    show.examples = {{"quillon show x", "a remark"}};
    show.examplesTitle = "Example";
    show.paragraphs = {".5 of it", "a\\b"};
    CommandDescription help;
    help.name = "quillon help";
    help.summary = "Help";
    help.arguments = {{{"COMMAND"}, "", {}, "Which", false, true}};
    CommandDescription program;
    program.name = "quillon";
    program.options = {{{"-h", "--help"}, "", {}, "Show this", false, false}};
    program.commands = {show, help};
    return program;
}

TEST(RoffText, ShowsWhatRoffWouldTakeForItsOwn) {
    EXPECT_EQ(RoffText(".TH"), "\\&.TH");
    EXPECT_EQ(RoffText("a\\b --it's ~/x ^ `"), "a\\eb \\-\\-it\\(aqs \\(ti/x \\(ha \\(ga");
}

TEST(RoffParagraph, NeverBeginsALineLikeARequest) {
    const std::string words = std::string(70, 'x') + " .profile";
    EXPECT_EQ(RoffParagraph(words), std::string(70, 'x') + "\n\\&.profile\n");
}

TEST(FillFrame, PutsValuesIntoTheirPlaces) {
    EXPECT_EQ(FillFrame("a @X@ b@Y@", {{"X", "1"}, {"Y", "@Z@"}}), "a 1 b@Z@");
    EXPECT_EQ(FillFrame("quillon@.timer quillon@x", {}), "quillon@.timer quillon@x");
    EXPECT_THROW(FillFrame("@MISSING@", {}), std::runtime_error);
}

TEST(CommandParts, TellEachCommandWithItsOptionsAndExamples) {
    const auto parts = CommandParts(SmallProgram());
    EXPECT_EQ(parts.at("SYNOPSIS"),
              "\\fBquillon show\\fR [\\fIOPTIONS\\fR] \\fB\\-m\\fR, \\fB\\-\\-mode\\fR "
              "\\fBfast\\fR|\\fBslow\\fR \\fIFILE\\fR\n"
              ".br\n\\fBquillon help\\fR [\\fIOPTIONS\\fR] [\\fICOMMAND\\fR...]\n");
    EXPECT_THAT(parts.at("COMMANDS"), HasSubstr("\nHow. Required.\n"));
    EXPECT_THAT(parts.at("COMMANDS"), HasSubstr("\n.PP\n\\&.5 of it\n.PP\na\\eb\n"));
    EXPECT_THAT(parts.at("COMMANDS"), HasSubstr("# a remark\nquillon show x\n"));
    EXPECT_THAT(parts.at("OPTIONS"), HasSubstr("\\fB\\-\\-help\\fR\nShow this.\n"));
}

TEST(CommandParts, LeaveNoCommandOfTheProgramOut) {
    const CommandDescription program = DescribeCommandLine();
    const auto parts = CommandParts(program);
    EXPECT_THAT(parts.at("COMMANDS"), StartsWith(".SS quillon run "));
    for (const CommandDescription* const command : AllCommands(program)) {
        if (command == &program || command->needsCommand) continue;
        EXPECT_THAT(parts.at("COMMANDS"), HasSubstr(".SS " + RoffText(command->name) + ' '));
        for (const OptionDescription& option : command->options)
            EXPECT_THAT(parts.at("COMMANDS") + parts.at("OPTIONS"),
                        HasSubstr(RoffText(option.names.back())));
    }
}

TEST(SettingParts, TellEverySettingWithItsTypeAndDefault) {
    const auto parts = SettingParts();
    for (const SettingDefinition& setting : SettingDefinitions())
        EXPECT_THAT(parts.at("SETTINGS"),
                    HasSubstr("\n\\fB" + std::string(setting.key) + "\\fR (\\fI"));
    EXPECT_THAT(parts.at("SETTINGS"),
                HasSubstr("\\fBImagesWide\\fR (\\fIstrict number\\fR, default: \\fB5\\fR)"));
    EXPECT_THAT(parts.at("SETTINGS"),
                HasSubstr("\\fBLibraryRoot\\fR (\\fIpath\\fR, default: empty)"));
    EXPECT_EQ(parts.at("MaxRemovedPlaylists"), "5");
}

TEST(CompletionWords, AreToldByTheNameThatStandsForThem) {
    const auto kind = [](std::string name, std::string value = "") {
        return KindOf({{std::move(name)}, std::move(value), {}, "", false, false});
    };
    EXPECT_EQ(kind("--host", "DIR"), WordKind::Folder);
    EXPECT_EQ(kind("--music", "FOLDER"), WordKind::Folder);
    EXPECT_EQ(kind("FILE"), WordKind::File);
    EXPECT_EQ(kind("--from", "CSVFILE"), WordKind::File);
    EXPECT_EQ(kind("COMMAND"), WordKind::Command);
    EXPECT_EQ(kind("--port", "N"), WordKind::Anything);
    EXPECT_EQ(kind("--quiet"), WordKind::Anything);
}

TEST(CompletionWords, NameTheOtherCommandsBehindTheOneThatExplainsThem) {
    const CommandDescription typed = AsTyped(SmallProgram());
    const CommandDescription* const topic = FindCommand(typed, "quillon help show");
    ASSERT_NE(topic, nullptr);
    EXPECT_TRUE(topic->options.empty());
    EXPECT_EQ(FindCommand(typed, "quillon help help"), nullptr);
}

TEST(Completions, OfferCommandsOptionsAndTheirValues) {
    const CommandDescription program = SmallProgram();
    const std::string bash = BashCompletion(program);
    EXPECT_THAT(bash, HasSubstr("'quillon show -m' | 'quillon show --mode') words='fast slow'"));
    EXPECT_THAT(bash, HasSubstr("'quillon show --to') words='' kind=folder"));
    EXPECT_THAT(bash, HasSubstr("words='show help'"));
    EXPECT_THAT(bash, HasSubstr("[[ $taken == 0 ]] && kind=file"));
    const std::string zsh = ZshCompletion(program);
    EXPECT_THAT(zsh, HasSubstr("'show:Show it'\\''s \\[all\\]\\: now'"));
    EXPECT_THAT(zsh, HasSubstr("'(-m --mode)--mode=[How]:fast|slow:(fast slow)'"));
    EXPECT_THAT(zsh, HasSubstr("':FILE:_files'"));
    const std::string fish = FishCompletion(program);
    EXPECT_THAT(fish,
                HasSubstr("'__quillon_is quillon show' -s m -l mode -x -a 'fast slow' -d 'How'"));
    EXPECT_THAT(fish, HasSubstr("-a show -d 'Show it\\'s [all]: now'"));
    EXPECT_THAT(fish, Not(HasSubstr("help help")));
}

}  // namespace
}  // namespace quillon
