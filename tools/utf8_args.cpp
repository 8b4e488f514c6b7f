#include "tools/utf8_args.h"

#include "store/jet/os_file.h"

namespace tools {

Utf8Arguments::Utf8Arguments(int argc, char** argv) : texts_(jet::os::commandLineArguments()) {
    if (texts_.empty()) {
        for (int i = 0; i < argc; ++i)
            texts_.emplace_back(argv[i]);
    }
    for (std::string& text : texts_)
        values_.push_back(text.data());
    values_.push_back(nullptr);
}

}  // namespace tools
