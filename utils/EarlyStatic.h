// SPDX-License-Identifier: Apache-2.0
#pragma once

// For a static object that constructors of global objects in other files may use: it is made before them, in any link
// order, and destroyed after them. Apple's compiler does not offer this.
#ifdef __APPLE__
#define VORLANE_EARLY_STATIC
#else
#define VORLANE_EARLY_STATIC [[gnu::init_priority(101)]]
#endif
