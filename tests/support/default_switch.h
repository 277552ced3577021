// What a table header shows of the ports of resetPlatform()'s switch, below its title line.
#pragma once

#include <string>

namespace recording {

inline const std::string kNoPortsHead =
    "=================== \n"
    "ASIC port           \n"
    "user port           \n"
    "link num            \n"
    "running rate       \n"
    "media type         \n"
    "=================== \n";

inline const std::string kPort0Head =
    "=================== ==== \n"
    "ASIC port              0 \n"
    "user port            100 \n"
    "link num               0 \n"
    "running rate          8G\n"
    "media type           OPT\n"
    "=================== ==== \n";

inline const std::string kPorts0And1Head =
    "=================== ==== ==== \n"
    "ASIC port              0    1 \n"
    "user port            100  101 \n"
    "link num               0    0 \n"
    "running rate          8G   8G\n"
    "media type           OPT  OPT\n"
    "=================== ==== ==== \n";

inline const std::string kGlHead =
    "=================== ==== ==== ==== ==== ==== ==== \n"
    "ASIC port              0    1    2    3    4    5 \n"
    "user port            100  101  102  N/A  104  105 \n"
    "link num               0    0    0    0    0    0 \n"
    "running rate          8G   8G   8G   8G   8G   8G\n"
    "media type           OPT  OPT  OPT  OPT  OPT  OPT\n"
    "=================== ==== ==== ==== ==== ==== ==== \n";

inline const std::string kPort6Head =
    "=================== ==== ==== ==== ==== \n"
    "ASIC port              6    6    6    6 \n"
    "user port            106  106  106  106 \n"
    "link num               0    1    2    3 \n"
    "running rate          8G   8G   8G   8G\n"
    "media type           OPT  OPT  OPT  OPT\n"
    "=================== ==== ==== ==== ==== \n";

inline const std::string kPorts5And6Head =
    "=================== ==== ==== ==== ==== ==== \n"
    "ASIC port              5    6    6    6    6 \n"
    "user port            105  106  106  106  106 \n"
    "link num               0    0    1    2    3 \n"
    "running rate          8G   8G   8G   8G   8G\n"
    "media type           OPT  OPT  OPT  OPT  OPT\n"
    "=================== ==== ==== ==== ==== ==== \n";

inline const std::string kPort8Head =
    "=================== ==== \n"
    "ASIC port              8 \n"
    "user port            108 \n"
    "link num               0 \n"
    "running rate          8G\n"
    "media type           OPT\n"
    "=================== ==== \n";

inline const std::string kExgHead =
    "=================== ==== ==== ==== ==== \n"
    "ASIC port              8    9   10   11 \n"
    "user port            108  N/A  110  111 \n"
    "link num               0    0    0    0 \n"
    "running rate          8G   8G   8G   8G\n"
    "media type           OPT  OPT  OPT  OPT\n"
    "=================== ==== ==== ==== ==== \n";

}  // namespace recording
