// Removal of what the compiler driver left under a superseded coverage symbol.
#pragma once

/// Removes from the temporary area the symbol's database directory, its INI file, every file in
/// the after-instrumentation area whose name begins with the symbol and a full stop, and its saved
/// object. What is missing is no error. Refused with a warning for a name that does not stand for
/// one symbol (empty, "..", with a "/") and while the temporary area is not known.
void DeleteInstInfoFromLLTTEMP(const char* symbol);
