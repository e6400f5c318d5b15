// The project file of a work area: what was built there last, as archive steps and links write it.
// An INI file; each key replaces its earlier value.
//
//     [project]
//     start_instpoint=96             end of the numbering of points
//     coverage_counter_mode=1        `CounterMode::recorded_mode` of the stub mode
//     EndTime_Caddis=20261121070512  when it was built
//     SupportSameName =1             always so
//     sutpath=/p/obj/libx.a          what was built; percent signs may be squeezed
//     BUID=Q1121070512               build id
#pragma once

#include <string>

/// Its keys.
namespace project_key
{

inline constexpr char START[] = "start_instpoint";
inline constexpr char COUNTER_MODE[] = "coverage_counter_mode";
inline constexpr char BUILT[] = "EndTime_Caddis";
/// Kept: the key ends with a blank; readers look for that.
inline constexpr char SAME_NAME[] = "SupportSameName ";
inline constexpr char OUTPUT[] = "sutpath";
inline constexpr char BUILD_ID[] = "BUID";

} // namespace project_key

/// The value of a key in the project file of the work area; empty when there is none.
std::string project_value(const std::string& area, const char* key);

/// Sets it; 1 on success, else 0 after a warning.
int set_project_value(const std::string& area, const char* key, const char* value);
