// SPDX-License-Identifier: LicenseRef-Halyard
#include "Targets.h"

int main(int argc, char** argv) { return bench::runWithTargets(argc, argv); }
