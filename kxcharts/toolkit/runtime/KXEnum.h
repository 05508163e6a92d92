#pragma once
// Names of enumeration members, declared once beside each enumeration, so that sets know
// how many members exist and streaming can write a member by its name.
//
//   enum TAxisOption : uint8_t { aoAutoMinimum, aoAutoMaximum, ... };
//   KX_ENUM_NAMES(TAxisOption, "aoAutoMinimum", "aoAutoMaximum", ...)
//
// Members must be numbered 0..Count-1 in declaration order (the platform's rule for
// streamed enumerations). The few with fixed numbers and gaps specialise TEnumInfo by
// hand with a `Values` array beside `Names` (see TColor).

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

namespace kx {

template <class E> struct TEnumInfo; // specialised by KX_ENUM_NAMES

template <class E>
concept NamedEnum = std::is_enum_v<E> && requires {
  TEnumInfo<E>::Names;
};

template <class E>
inline constexpr int TEnumCount = static_cast<int>(std::size(TEnumInfo<E>::Names));

// The member's name, or its number as text when it names no member.
template <NamedEnum E> std::string GetEnumName(E Value) {
  using Info = TEnumInfo<E>;
  const auto Raw = static_cast<long long>(Value);
  if constexpr (requires { Info::Values; }) {
    for (size_t I = 0; I < std::size(Info::Values); ++I)
      if (static_cast<long long>(Info::Values[I]) == Raw) return std::string(Info::Names[I]);
  } else if (Raw >= 0 && Raw < TEnumCount<E>) {
    return std::string(Info::Names[Raw]);
  }
  return std::to_string(Raw);
}

template <NamedEnum E> std::optional<E> GetEnumValue(std::string_view Name) {
  using Info = TEnumInfo<E>;
  for (size_t I = 0; I < std::size(Info::Names); ++I)
    if (Info::Names[I] == Name) {
      if constexpr (requires { Info::Values; })
        return Info::Values[I];
      else
        return static_cast<E>(I);
    }
  return std::nullopt;
}

template <NamedEnum E> std::span<const std::string_view> GetEnumNames() {
  return TEnumInfo<E>::Names;
}

} // namespace kx

// Use inside namespace kx, after the enumeration.
#define KX_ENUM_NAMES(E, ...)                                                                      \
  template <> struct TEnumInfo<E> { static constexpr std::string_view Names[] = {__VA_ARGS__}; };
