#pragma once

namespace wavetrace::core {

// The release this program implements; the registry records it as
// MajorVersion 2 and MinorVersion 71.
inline constexpr char16_t kRelease[] = u"2.71";
inline constexpr char16_t kBuild[] = u"3089";
inline constexpr char16_t kReleaseDate[] = u"(11.2008)";
inline constexpr char16_t kReleaseLine[] = u"Rel. 2.71.3089 (11.2008)";
inline constexpr int kMajorVersion = 2;
inline constexpr int kMinorVersion = 71;

inline constexpr char16_t kProgramTitle[] = u"Wavetrace Pro ";
inline constexpr char16_t kProgramTitleAuto[] = u"Wavetrace Pro(Auto) ";
inline constexpr char16_t kMainWindowClass[] = u"cWavetracepro";

}  // namespace wavetrace::core
