// Is there until its input ends: OBS, when it bears that name, or anybody who has a library loaded.
#include <windows.h>

#include <cstdio>

int main(int count, char **arguments)
{
    if (count > 1 && LoadLibraryExA(arguments[1], nullptr, DONT_RESOLVE_DLL_REFERENCES) == nullptr)
        return 1;
    std::puts("ready");
    std::fflush(stdout);
    while (std::getchar() != EOF) {
    }
    return 0;
}
