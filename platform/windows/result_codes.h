// Result codes of media objects as results. The system's header has them as unsigned numbers, which no result equals
// without a warning.
#pragma once

#undef DMO_E_INVALIDSTREAMINDEX
#undef DMO_E_INVALIDTYPE
#undef DMO_E_TYPE_NOT_SET
#undef DMO_E_NOTACCEPTING
#undef DMO_E_TYPE_NOT_ACCEPTED
#undef DMO_E_NO_MORE_ITEMS

inline constexpr HRESULT DMO_E_INVALIDSTREAMINDEX = static_cast<HRESULT>(0x80040201U);
inline constexpr HRESULT DMO_E_INVALIDTYPE = static_cast<HRESULT>(0x80040202U);
inline constexpr HRESULT DMO_E_TYPE_NOT_SET = static_cast<HRESULT>(0x80040203U);
inline constexpr HRESULT DMO_E_NOTACCEPTING = static_cast<HRESULT>(0x80040204U);
inline constexpr HRESULT DMO_E_TYPE_NOT_ACCEPTED = static_cast<HRESULT>(0x80040205U);
inline constexpr HRESULT DMO_E_NO_MORE_ITEMS = static_cast<HRESULT>(0x80040206U);
