// SPDX-License-Identifier: LicenseRef-Halyard
// Where this program and the user's data lie.
// Threads: any.
#pragma once

#include <string>

namespace brt {

// [any] The absolute path, links followed, of the file that this code was loaded from: the plug-in's shared library,
// or the executable. Found out when it is loaded, since a later change of the working directory makes the loader's own
// answer wrong. Empty if the system doesn't tell.
std::u16string modulePath();

// [any] The folder for the user's settings, absolute and without a "/" at the end; it may not exist yet.
// $XDG_CONFIG_HOME, else .config in $HOME, each if it is absolute; else .config in the home folder that the user
// database names. Empty if there is none. Asks the environment at each call, so that a test can set it.
std::u16string userDataFolder();

}  // namespace brt
