#include "tools/utf8_args.h"

#ifdef _WIN32
#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>
// shellapi.h needs windows.h first.
#include <shellapi.h>

#include <cwchar>
#endif

namespace tools {
namespace {

#ifdef _WIN32
std::string utf8(const wchar_t* text) {
    const int length = static_cast<int>(std::wcslen(text));
    if (length == 0)
        return {};
    const int size = ::WideCharToMultiByte(CP_UTF8, 0, text, length, nullptr, 0, nullptr, nullptr);
    std::string converted(static_cast<std::size_t>(size), '\0');
    ::WideCharToMultiByte(CP_UTF8, 0, text, length, converted.data(), size, nullptr, nullptr);
    return converted;
}

// The command line split as the C runtime splits it for main(); empty when
// the system cannot split it.
std::vector<std::string> commandLineInUtf8() {
    std::vector<std::string> arguments;
    int count = 0;
    wchar_t** wide = ::CommandLineToArgvW(::GetCommandLineW(), &count);
    if (wide == nullptr)
        return arguments;
    for (int i = 0; i < count; ++i)
        arguments.push_back(utf8(wide[i]));
    ::LocalFree(static_cast<HLOCAL>(wide));
    return arguments;
}
#endif

}  // namespace

Utf8Arguments::Utf8Arguments(int argc, char** argv) {
#ifdef _WIN32
    texts_ = commandLineInUtf8();
#endif
    if (texts_.empty()) {
        for (int i = 0; i < argc; ++i)
            texts_.emplace_back(argv[i]);
    }
    for (std::string& text : texts_)
        values_.push_back(text.data());
    values_.push_back(nullptr);
}

}  // namespace tools
