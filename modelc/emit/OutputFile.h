// One emitted file.
#ifndef MODELC_EMIT_OUTPUTFILE_H
#define MODELC_EMIT_OUTPUTFILE_H

#include <string>

namespace Modelc {

struct OutputFile {
    std::string path;  // relative, such as vgw/tables/LogicalSwitch.h
    std::string text;
};

}  // namespace Modelc

#endif
