// Objects of clang are not read yet: they are left out, and said so.
#include "lltcov/llvm_reader.h"

void read_clang_objects(const ObjectReadings& objects, Counting /*counting*/, Findings& findings)
{
    for (const ObjectReading* object : objects) {
        findings.add("objects of clang", "'" + object->record->object +
                                             "' was compiled by clang, whose counters are not "
                                             "read here: left out; compile it by gcc");
    }
}
