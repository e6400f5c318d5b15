// The pieces of assembly syntax that reading needs, for both machines.
#pragma once

#include "asm_scan.h"

#include "commonfunc/text.h"

#include <array>
#include <string>
#include <string_view>
#include <vector>

/// The line without blanks around it.
std::string_view trimmed(std::string_view line);

/// The words of a directive, between blanks and commas. A quoted word stands without its quotes,
/// its escapes resolved.
std::vector<std::string> directive_words(std::string_view line);

/// File, line, column and discriminator of a line directive.
using Location = std::array<int, 4>;

/// The location in the words of a line directive; what they do not give is 0.
Location location_of(const std::vector<std::string>& words);

/// A label that code can jump to: `.L` and a digit (GCC), `.LBB` with an underscore (clang), or a
/// name of the programmer's. The other labels of the compilers mark debug information.
bool is_jump_target(std::string_view label);

/// The word that names a function at its definition: C symbols stand for themselves; of a mangled
/// one (Itanium C++ ABI) the last identifier of its name, or "operator". Empty when that cannot be
/// told, as for members of template instances and local classes.
std::string name_in_source(std::string_view symbol);

/// A function that GCC adds to a source to start or end a sanitizer (-fsanitize=address).
bool is_sanitizer_start(std::string_view symbol);

/// An instruction that has to stand first where an indirect jump may land.
bool is_landing_mark(std::string_view mnemonic);

/// Where code goes on behind an instruction.
enum class Flow { on, branch, end };

/// Whether the code goes on behind the instruction, only there or elsewhere too.
Flow flow_of(Machine machine, std::string_view mnemonic);

/// Whether the instruction only sets a register, to a constant or to another register.
bool is_copy(Machine machine, std::string_view mnemonic, std::string_view operand);

/// Whether the instruction jumps to another function, instead of call and return.
bool is_tail_call(Machine machine, std::string_view mnemonic, std::string_view operand);

/// Whether the instruction calls a function that may end the program or jump out of it. Only
/// functions that the compilers themselves know to return are taken for safe.
bool may_not_return(Machine machine, std::string_view mnemonic, std::string_view operand);

/// The machine of a text, by its first probe; none without a probe. Throws NotInstrumentable.
Machine machine_of(std::string_view text);

/// How an instruction that names the probe runs it. Throws NotInstrumentable at unknown forms.
Region::Probe probe_form(Machine machine, std::string_view mnemonic, std::string_view operand);
