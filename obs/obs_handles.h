#pragma once

#include "obs/libobs.h"

#include <QString>

#include <span>

namespace quillmar
{

/// A text that an OBS call returned for the caller to free.
class ObsString
{
public:
    /// Takes `text` over; null is an empty text.
    explicit ObsString(char *text) : text_(text) {}
    ~ObsString() { bfree(text_); }
    ObsString(const ObsString &) = delete;
    ObsString &operator=(const ObsString &) = delete;

    /// A copy that outlives this object.
    QString text() const { return QString::fromUtf8(text_); }

private:
    char *text_;
};

/// The transitions of the front end at the moment of construction, held until destruction.
class FrontendTransitions
{
public:
    FrontendTransitions() { obs_frontend_get_transitions(&list_); }
    ~FrontendTransitions() { obs_frontend_source_list_free(&list_); }
    FrontendTransitions(const FrontendTransitions &) = delete;
    FrontendTransitions &operator=(const FrontendTransitions &) = delete;

    /// Borrowed: valid while this object lives.
    std::span<obs_source_t *const> sources() const { return {list_.sources.array, list_.sources.num}; }

private:
    obs_frontend_source_list list_{};
};

} // namespace quillmar
