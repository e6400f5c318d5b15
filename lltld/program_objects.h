// Objects that the program owns and defines, and that the coverage side reads.
#pragma once

/// 1 once the archive sequence runs: the stub is made for a static library. Else 0.
extern int g_iStaticLib;

/// The number of "lltwrapper_cfg", 0 when unset; chooses the link driver.
extern int iToken_wrapper;

/// Never set by the wrapper, so always 0; a link driver that links this library sets its own.
extern int iToken_warpper_inner;
