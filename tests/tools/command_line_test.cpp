// The command line as a table: what is declared of every command, without running any.
#include "tools/kpf/command_line.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

using namespace KPF_TOOL;
using testing::HasSubstr;
using testing::StartsWith;

class CommandLine : public testing::Test {
 protected:
  CommandLine() { buildCommandLine(app_, job_); }

  /// Hidden ones included.
  std::vector<const CLI::App*> commands() const {
    return static_cast<const CLI::App&>(app_).get_subcommands({});
  }

  /// Parses as main does. @return whether there is a job afterwards.
  bool parse(std::vector<std::string> words) {
    std::reverse(words.begin(), words.end());  // CLI11 takes them from the end
    app_.parse(words);
    return static_cast<bool>(job_);
  }

  CLI::App app_;
  Job job_;
};

TEST_F(CommandLine, HasANameOfItsOwn) { EXPECT_EQ(app_.get_name(), "kpf"); }

TEST_F(CommandLine, EveryCommandIsDescribed) {
  EXPECT_GE(commands().size(), 6U);
  for (const CLI::App* command : commands()) {
    EXPECT_FALSE(command->get_name().empty());
    EXPECT_FALSE(command->get_description().empty()) << command->get_name();
  }
}

TEST_F(CommandLine, EveryOptionIsDescribed) {
  for (const CLI::App* command : commands()) {
    for (const CLI::Option* option : command->get_options()) {
      EXPECT_FALSE(option->get_description().empty())
          << command->get_name() << ' ' << option->get_name();
    }
  }
}

TEST_F(CommandLine, EveryCommandEndsInExampleAndExitStatus) {
  for (const CLI::App* command : commands()) {
    EXPECT_THAT(command->get_footer(), StartsWith("Example: kpf " + command->get_name() + " "));
    EXPECT_THAT(command->get_footer(), HasSubstr("\n\nEXIT STATUS\n  0  "));
    EXPECT_THAT(command->get_footer(), HasSubstr("\n  2  "));
  }
}

TEST_F(CommandLine, MeaningsOfExitCodesThatNeverComeAreLeftOut) {
  CLI::App line;
  addFooter(line, "kpf x", {"zero", "", "two"});
  EXPECT_EQ(line.get_footer(), "Example: kpf x\n\nEXIT STATUS\n  0  zero\n  2  two");
}

TEST_F(CommandLine, UnderstoodLinesLeaveAJob) {
  EXPECT_FALSE(static_cast<bool>(job_));
  EXPECT_TRUE(parse({"info", "clip.kpf"}));
}

TEST_F(CommandLine, NothingRunsWhileALineIsRead) {
  EXPECT_NO_THROW(parse({"info", "/nowhere/none.kpf"}));
  EXPECT_ANY_THROW(job_());
}

TEST_F(CommandLine, OneCommandIsNeeded) {
  EXPECT_THROW(parse({}), CLI::RequiredError);
  EXPECT_THROW(parse({"nonsense"}), CLI::ParseError);
}

TEST_F(CommandLine, ValuesAreCheckedBeforeAnythingRuns) {
  EXPECT_THROW(parse({"record", "in.avi", "out.kpf", "--bits", "10"}), CLI::ValidationError);
  EXPECT_THROW(parse({"record", "in.avi", "out.kpf", "--frames", "0"}), CLI::ValidationError);
  EXPECT_THROW(parse({"record", "in.avi", "out.kpf", "--frames", "4294967296"}),
               CLI::ValidationError);
  EXPECT_THROW(parse({"record", "in.avi", "out.kpf", "--rate", "-1"}), CLI::ValidationError);
  EXPECT_THROW(parse({"amplify", "a.kpf", "-", "--frequency", "0"}), CLI::ValidationError);
  EXPECT_THROW(parse({"export", "a.kpf", "-", "--from", "-1"}), CLI::ParseError);
  EXPECT_FALSE(static_cast<bool>(job_));
}

}  // namespace
