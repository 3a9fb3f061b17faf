#include "switched_protection.h"

namespace quillmar::test
{

std::unique_ptr<TokenProtection> makeKeptProtection()
{
    return makeTokenProtection();
}

/// A block cipher fills its last block.
qsizetype keptProtectionStep()
{
    return 16;
}

} // namespace quillmar::test
