// SPDX-License-Identifier: LicenseRef-Halyard
// Several files rendered by several threads inside one process, so that the race detector sees them.
#include <sndfile.h>

#include "Tools/Halyard/RenderCommand.h"
#include "Tools/HalyardRunner.h"

namespace brt {
namespace {

class BatchTest : public HalyardTest {};

TEST_F(BatchTest, filesRenderedAtOnceComeOutAsTheyDoAlone) {
    RenderRequest batch;
    batch.outputFolder = path("results");
    batch.jobCount = 3;
    batch.common.settings.inputGainDb = 6;
    std::filesystem::create_directory(*batch.outputFolder);
    for (int i = 0; i < 4; ++i) {
        const std::string name = std::to_string(i) + ".wav";
        write(name, soundOf(quietMusic(1500 + 100 * i, 1), SF_FORMAT_WAV | SF_FORMAT_PCM_24));
        batch.files.push_back(path(name));
    }
    batch.files.push_back(path("missing.wav"));
    EXPECT_EQ(runRender(batch), 1);
    for (int i = 0; i < 4; ++i) {
        const std::string name = std::to_string(i) + ".wav";
        RenderRequest single;
        single.common = batch.common;
        single.files = {path(name), path("alone.wav")};
        single.common.mayReplace = true;
        EXPECT_EQ(runRender(single), 0);
        EXPECT_EQ(bytes("alone.wav"), bytes("results/" + name));
    }
}

}  // namespace
}  // namespace brt
