// SPDX-License-Identifier: LicenseRef-Halyard
// What a loaded module does with the object tree.
#pragma once

// Starts the application and lets an instance's tree come, work and go. False if something of it didn't work. Behind it
// stay, for the unload: the shared tree with a message loop of this thread in which posts wait, a timer that ticks each
// millisecond on its thread, and notifiers with listeners. Once in a load.
bool exerciseTree();
