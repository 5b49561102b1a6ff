#pragma once

// What the readers of RenderWare files tell the person, in one place.

#include <string_view>

namespace RW::Message {

// Soft errors.
/// Takes the system's error code.
inline constexpr std::wstring_view kCannotOpen = L"Cant open RW stream file. Error code: 0x%0X.";
inline constexpr std::wstring_view kWrongRoot = L"Wrong root section ID.";
inline constexpr std::wstring_view kNotValid = L"It's not a valid RW file";
inline constexpr std::wstring_view kReadingFailed = L"Stream reading error.";
inline constexpr std::wstring_view kCannotDetach = L"Can't detach from handle.";
inline constexpr std::wstring_view kCannotOpenOutput = L"Can't open output file.";
inline constexpr std::wstring_view kNotADictionary = L"This is not a valid RW texture dictionary.";
inline constexpr std::wstring_view kNotPC = L"This is not a valid PC texture.";
inline constexpr std::wstring_view kNotPS2 = L"This is not a PS2 texture.";
inline constexpr std::wstring_view kNotMobile = L"This is not a valid Mobile texture.";
inline constexpr std::wstring_view kNoTexture = L"Texture not exists.";
inline constexpr std::wstring_view kUnknownTexture = L"Unknown texture ID";
inline constexpr std::wstring_view kNameTooLong = L"Name length cannot exceed 31 character.";
inline constexpr std::wstring_view kNotOpened = L"RW Stream is not opened.";

// Errors of streams, which show a stop box.
inline constexpr std::wstring_view kNoSuchSection = L"Wrong section ID.";
inline constexpr std::wstring_view kNodeMissing = L"Node is N/A. this is fucking ERROR!!!!\n";
inline constexpr std::wstring_view kNullNode = L"pNode is NULL!";
inline constexpr std::wstring_view kRecordUnreadable = L"Section data reading failed.";
inline constexpr std::wstring_view kCountUnreadable = L"Section 0 data reading failed.";

// Errors of sections, which show a stop box with the section's facts.
inline constexpr std::wstring_view kNullChild =
    L"Cannot add child section to node: NULL CNode pointer given.";
inline constexpr std::wstring_view kNoChild = L"Node have no requested child!";
inline constexpr std::wstring_view kNoHandle = L"Trying to read section data with invalid resource handle.";
inline constexpr std::wstring_view kBodyUnreadable = L"Unknown section data reading error.";

// Of the front ends.
inline constexpr std::wstring_view kUnknownSaveError = L"Unknown save error";
inline constexpr std::wstring_view kUnknownError = L"Unknown error";

}  // namespace RW::Message
