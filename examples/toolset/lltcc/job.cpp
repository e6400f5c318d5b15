// One line per member, its name first: values may hold blanks, and a new member is a new line.
#include "job.h"

#include <cstdlib>
#include <sstream>

std::string to_text(const Job& job)
{
    std::ostringstream out;
    out << "area " << job.area << "\nmode " << job.stub_mode << "\ndrop " << job.drop_debug_info
        << "\nassembler " << job.assembler << "\ncommand " << job.compile_command << "\nnotices "
        << job.notices << '\n';
    for (const std::string& source : job.sources) {
        out << "source " << source << '\n';
    }
    for (const auto& [real, recorded] : job.path_maps) {
        out << "map " << real << '=' << recorded << '\n';
    }
    return out.str();
}

Job job_from(const std::string& text)
{
    Job job;
    std::istringstream in(text);
    for (std::string name; in >> name;) {
        std::string value;
        in.get();
        std::getline(in, value);
        if (name == "area") {
            job.area = value;
        } else if (name == "mode") {
            job.stub_mode = std::atoi(value.c_str());
        } else if (name == "drop") {
            job.drop_debug_info = value == "1";
        } else if (name == "assembler") {
            job.assembler = value;
        } else if (name == "command") {
            job.compile_command = value;
        } else if (name == "notices") {
            job.notices = std::atoi(value.c_str());
        } else if (name == "source") {
            job.sources.push_back(value);
        } else if (name == "map") {
            const std::size_t at = value.rfind('=');
            job.path_maps.emplace_back(value.substr(0, at), value.substr(at + 1));
        }
    }
    return job;
}
