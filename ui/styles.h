#pragma once

#include <QLatin1StringView>

/// The style sheets of the dock, one per widget that has its own. The dock's sheet reaches every descendant.
namespace quillmar::styles
{

inline constexpr QLatin1StringView Dock{
    "QWidget { background-color: #0b100d; color: white; font-family: 'Tahoma'; font-size: 13px;}"
    "QLabel { color: white;}"
    "QLineEdit { background-color: #151a17; border: 1px solid #3a443d; border-radius: 7px; padding: 10px; "
    "padding-left: 12px; padding-right: 12px; color: white; font-family: 'Tahoma'; font-size: 13px;}"
    "QLineEdit:focus { border: 1px solid #55ff22;}"
    "QPushButton { background-color: #55ff22; color: black; border: none; border-radius: 7px; padding: 10px; "
    "font-family: 'Tahoma'; font-size: 14px; font-weight: 700;}"
    "QPushButton:hover { background-color: #70ff47;}"
    "QPushButton:pressed { background-color: #42d91c;}"
    "QPushButton:disabled { background-color: #3a443d; color: #999999;}"};

inline constexpr QLatin1StringView Brand{
    "font-family: 'Segoe UI';font-size: 27px;font-weight: 700;color: #55ff22;"};

inline constexpr QLatin1StringView SignInTitle{
    "font-family: 'Tahoma';font-size: 15px;font-weight: 600;color: #ffffff;padding: 2px 0px;"};

inline constexpr QLatin1StringView Welcome{
    "font-family: 'Tahoma';font-size: 19px;font-weight: 700;color: white;"};

inline constexpr QLatin1StringView LanguageSelector{
    "QComboBox { background-color: #151a17; color: white; border: 1px solid #3a443d; border-radius: 5px; "
    "padding: 4px 8px; }"};

inline constexpr QLatin1StringView Logout{
    "QPushButton { background-color: #c62828; color: white; border: none; border-radius: 5px; padding: 4px "
    "10px; "
    "font-family: 'Tahoma'; font-size: 13px; font-weight: 400; }"
    "QPushButton:hover { background-color: #e53935; }"
    "QPushButton:pressed { background-color: #a51f1f; }"
    "QPushButton:disabled { background-color: #733333; color: white; }"};

inline constexpr QLatin1StringView UpdateBanner{
    "QFrame#quillmarUpdateBanner { background: #151a17; border: 1px solid #3a443d; border-radius: 7px; }"
    "QFrame#quillmarUpdateBanner QLabel { background: transparent; border: none; }"};

inline constexpr QLatin1StringView UpdateTitle{"color: #55ff22; font-weight: 700;"};

inline constexpr QLatin1StringView UpdateDownload{"padding: 5px 8px; font-size: 13px;"};

} // namespace quillmar::styles
