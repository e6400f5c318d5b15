// First half of archive mode: what is needed before the database can be brought up to date.
#pragma once

/// Loads the project settings, creates and locks the module's work area, and registers the
/// coverage symbols of the archive's members. `ar_flag` stays 1 when there is something to do, or
/// when no archive name was found; otherwise the archiver runs unchanged. `checkstate` calls it
/// with its own argument vector.
void prepare_archive(int argc, char** argv);
