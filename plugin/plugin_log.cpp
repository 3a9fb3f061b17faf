#include "plugin/plugin_log.h"

#include "obs/libobs.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <memory>

namespace quillmar
{

void pluginLog(LogLevel level, const char *format, ...)
{
    // "[", the name, "] " and the terminator
    constexpr std::size_t extra = 24;
    static_assert(sizeof(ModuleName) + 3 <= extra);

    const std::size_t size = std::strlen(format) + extra;
    const auto joined = std::make_unique<char[]>(size);
    std::snprintf(joined.get(), size, "[%s] %s", ModuleName, format);

    std::va_list arguments;
    va_start(arguments, format);
    blogva(static_cast<int>(level), joined.get(), arguments);
    va_end(arguments);
}

} // namespace quillmar
