// Second half of archive mode: the coverage work of one static library, and its archiver.
#pragma once

/// Brings the coverage database of the module up to date and makes its registration stub. False
/// when a step failed, after its message: the archiver must not run then, exit status 1.
bool bring_archive_up_to_date();
