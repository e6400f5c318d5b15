// The process as the parent may have left it, made fit for running a build step.
#pragma once

/// Opens /dev/null on each closed descriptor of 0 to 2, makes sure that the end of a child can be
/// waited for, and lets a write to a closed pipe, or beyond the limit on the size of files, fail
/// instead of ending the program. Comes first.
void prepare_process();
