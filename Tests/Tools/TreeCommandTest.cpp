// SPDX-License-Identifier: LicenseRef-Halyard
// `halyard tree`.
#include <gmock/gmock.h>

#include "Tools/HalyardRunner.h"

namespace brt {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

using TreeCommand = HalyardTest;

TEST_F(TreeCommand, printsWhatTheSharedDocumentMakes) {
    const std::string all = runWell("tree");
    EXPECT_THAT(all, StartsWith("shared:: complete\n"));
    EXPECT_THAT(all, HasSubstr("\n  project <core:object> complete\n"));
    EXPECT_THAT(all, HasSubstr("\n      app-version = \"1.11\"\n"));
    const std::string project = runWell("tree shared::project");
    EXPECT_THAT(project, StartsWith("project <core:object> complete\n    app-desc = "));
    EXPECT_EQ(runWell("tree project"), project);
    EXPECT_THAT(runWell("tree whatsnew.p#1"), StartsWith("p#1 <core:object> complete\n  content <content> complete\n"));
}

TEST_F(TreeCommand, pathsThatLeadNowhere) {
    const std::pair<const char*, const char*> cases[] = {
        {"shared::projct", "halyard: tree: 'shared::' has no child 'projct'; did you mean 'project'?\n"},
        {"whatsnew.q", "halyard: tree: 'shared::whatsnew' has no child 'q'\n"},
        {"project.something", "halyard: tree: 'shared::project' has no child 'something'\n"},
    };
    for (const auto& [path, errors] : cases) {
        const Outcome outcome = run("tree " + std::string(path));
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.output, "");
        EXPECT_EQ(outcome.errors, errors);
    }
}

}  // namespace
}  // namespace brt
