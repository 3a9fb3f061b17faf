#include "dpapi_calls.h"

#include "tests/support/imports/wrapped_import.h"

#include <qt_windows.h>

#include <dpapi.h>

namespace quillmar::test
{

namespace
{

using Call = DpapiCalls::Call;
using Prompt = CRYPTPROTECT_PROMPTSTRUCT;

QByteArray bytesOf(const DATA_BLOB &blob)
{
    return {reinterpret_cast<const char *>(blob.pbData), static_cast<qsizetype>(blob.cbData)};
}

Call asked(const DATA_BLOB &input, const DATA_BLOB *entropy, const void *reserved, const Prompt *prompt,
           DWORD flags)
{
    Call call;
    call.input = bytesOf(input);
    call.inputPlace = input.pbData;
    call.hasEntropy = entropy != nullptr;
    call.hasReserved = reserved != nullptr;
    call.hasPrompt = prompt != nullptr;
    call.flags = flags;
    return call;
}

void keepAnswer(Call &call, const DATA_BLOB &output)
{
    call.output = bytesOf(output);
    call.outputPlace = output.pbData;
}

void noteFree(QList<Call> &calls, const void *memory)
{
    for (Call &call : calls) {
        // The place of an answer that was freed may be given to the next.
        if (call.outputPlace == memory && call.freed.isEmpty()) {
            call.freed.append(QByteArray(static_cast<const char *>(memory), call.output.size()));
        }
    }
}

} // namespace

struct DpapiCalls::Private {
    bool refuses = false;
    QList<Call> protections;
    QList<Call> openings;
    QList<std::shared_ptr<void>> wraps;

    void wrapProtect();
    void wrapUnprotect();
    void wrapFree();
};

void DpapiCalls::Private::wrapProtect()
{
    wraps.append(
        wrapImport(nullptr, "CryptProtectData", &CryptProtectData,
                   [this](auto *real, DATA_BLOB *input, LPCWSTR description, DATA_BLOB *entropy,
                          void *reserved, Prompt *prompt, DWORD flags, DATA_BLOB *output) -> BOOL {
                       Call &call = protections.emplaceBack(asked(*input, entropy, reserved, prompt, flags));
                       call.description = QString::fromWCharArray(description);
                       if (refuses || !real(input, description, entropy, reserved, prompt, flags, output)) {
                           return FALSE;
                       }
                       keepAnswer(call, *output);
                       return TRUE;
                   }));
}

void DpapiCalls::Private::wrapUnprotect()
{
    wraps.append(
        wrapImport(nullptr, "CryptUnprotectData", &CryptUnprotectData,
                   [this](auto *real, DATA_BLOB *input, LPWSTR *description, DATA_BLOB *entropy,
                          void *reserved, Prompt *prompt, DWORD flags, DATA_BLOB *output) -> BOOL {
                       Call &call = openings.emplaceBack(asked(*input, entropy, reserved, prompt, flags));
                       call.asksForDescription = description != nullptr;
                       if (refuses || !real(input, description, entropy, reserved, prompt, flags, output)) {
                           return FALSE;
                       }
                       keepAnswer(call, *output);
                       return TRUE;
                   }));
}

void DpapiCalls::Private::wrapFree()
{
    wraps.append(wrapImport(nullptr, "LocalFree", &LocalFree, [this](auto *real, HLOCAL memory) {
        noteFree(protections, memory);
        noteFree(openings, memory);
        return real(memory);
    }));
}

DpapiCalls::DpapiCalls() : d_(std::make_unique<Private>())
{
    d_->wrapProtect();
    d_->wrapUnprotect();
    d_->wrapFree();
}

DpapiCalls::~DpapiCalls() = default;

const QList<Call> &DpapiCalls::protections() const
{
    return d_->protections;
}

const QList<Call> &DpapiCalls::openings() const
{
    return d_->openings;
}

void DpapiCalls::refuse()
{
    d_->refuses = true;
}

} // namespace quillmar::test
