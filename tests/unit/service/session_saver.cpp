#include "service/session_file.h"
#include "switched_protection.h"

#include <QString>

/// Saves each of the tokens after the first argument in turn, into the session file that it names, as a
/// process of its own that can be killed in between.
int main(int argc, char **argv)
{
    if (argc < 3) {
        return 2;
    }
    quillmar::SessionFile store(QString::fromLocal8Bit(argv[1]),
                                std::make_unique<quillmar::test::SwitchedProtection>());
    for (int i = 2; i < argc; ++i) {
        if (!store.save(QString::fromLocal8Bit(argv[i]))) {
            return 1;
        }
    }
    return 0;
}
