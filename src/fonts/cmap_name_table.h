// The encodings that a font may name. The build takes the names of the encoding folder's files from the first column
// and the last one.
#pragma once

#include <array>

#include "fonts/cmap_names.h"

namespace kapdf {

// Name, code page, codes of two bytes, vertical, map to Unicode.
inline constexpr std::array kCMapNames = {
    // clang-format off
    CMapName{"WinAnsiEncoding", 0, false, false, ""},
    CMapName{"MacRomanEncoding", 0, false, false, ""},
    CMapName{"Identity-H", 0, true, false, ""},
    CMapName{"Identity-V", 0, true, true, ""},
    CMapName{"GB-EUC-H", 936, false, false, "adobe-gb1-ucs2"},
    CMapName{"GB-EUC-V", 936, false, true, "adobe-gb1-ucs2"},
    CMapName{"GBK-EUC-H", 936, false, false, "adobe-gb1-ucs2"},
    CMapName{"GBK-EUC-V", 936, false, true, "adobe-gb1-ucs2"},
    CMapName{"GBK2K-EUC-H", 936, false, false, "adobe-gb1-ucs2"},
    CMapName{"GBK2K-EUC-V", 936, false, true, "adobe-gb1-ucs2"},
    CMapName{"GBKp-EUC-H", 936, false, false, "adobe-gb1-ucs2"},
    CMapName{"GBKp-EUC-V", 936, false, true, "adobe-gb1-ucs2"},
    CMapName{"GBpc-EUC-H", 936, false, false, "adobe-gb1-ucs2"},
    CMapName{"GBpc-EUC-V", 936, false, true, "adobe-gb1-ucs2"},
    CMapName{"GBt-EUC-H", 936, false, false, "adobe-gb1-ucs2"},
    CMapName{"GBt-EUC-V", 936, false, true, "adobe-gb1-ucs2"},
    CMapName{"UNIGB-UCS2-H", 0, true, false, "adobe-gb1-ucs2"},
    CMapName{"UNIGB-UCS2-V", 0, true, true, "adobe-gb1-ucs2"},
    CMapName{"B5PC-H", 950, false, false, "adobe-cns1-ucs2"},
    CMapName{"B5PC-V", 950, false, true, "adobe-cns1-ucs2"},
    CMapName{"CNS-EUC-H", 950, false, false, "adobe-cns1-ucs2"},
    CMapName{"CNS-EUC-V", 950, false, true, "adobe-cns1-ucs2"},
    CMapName{"ETen-B5-H", 950, false, false, "adobe-cns1-ucs2"},
    CMapName{"ETen-B5-V", 950, false, true, "adobe-cns1-ucs2"},
    CMapName{"ETenms-B5-H", 950, false, false, "adobe-cns1-ucs2"},
    CMapName{"ETenms-B5-V", 950, false, true, "adobe-cns1-ucs2"},
    CMapName{"EThk-B5-H", 950, false, false, "adobe-cns1-ucs2"},
    CMapName{"EThk-B5-V", 950, false, true, "adobe-cns1-ucs2"},
    CMapName{"HKDLA-B5-H", 950, false, false, "adobe-cns1-ucs2"},
    CMapName{"HKDLA-B5-V", 950, false, true, "adobe-cns1-ucs2"},
    CMapName{"HKDLB-B5-H", 950, false, false, "adobe-cns1-ucs2"},
    CMapName{"HKDLB-B5-V", 950, false, true, "adobe-cns1-ucs2"},
    CMapName{"HKGCCS-B5-H", 950, false, false, "adobe-cns1-ucs2"},
    CMapName{"HKGCCS-B5-V", 950, false, true, "adobe-cns1-ucs2"},
    CMapName{"HKm314-B5-H", 950, false, false, "adobe-cns1-ucs2"},
    CMapName{"HKm314-B5-V", 950, false, true, "adobe-cns1-ucs2"},
    CMapName{"HKm471-B5-H", 950, false, false, "adobe-cns1-ucs2"},
    CMapName{"HKm471-B5-V", 950, false, true, "adobe-cns1-ucs2"},
    CMapName{"HKscs-B5-H", 950, false, false, "adobe-cns1-ucs2"},
    CMapName{"HKscs-B5-V", 950, false, true, "adobe-cns1-ucs2"},
    CMapName{"UNICNS-UCS2-H", 0, true, false, "adobe-cns1-ucs2"},
    CMapName{"UNICNS-UCS2-V", 0, true, true, "adobe-cns1-ucs2"},
    CMapName{"78-H", 932, false, false, "adobe-japan1-ucs2"},
    CMapName{"78-V", 932, false, true, "adobe-japan1-ucs2"},
    CMapName{"78-EUC-H", 932, false, false, "adobe-japan1-ucs2"},
    CMapName{"78-EUC-V", 932, false, true, "adobe-japan1-ucs2"},
    CMapName{"78-RKSJ-H", 932, false, false, "adobe-japan1-ucs2"},
    CMapName{"78-RKSJ-V", 932, false, true, "adobe-japan1-ucs2"},
    CMapName{"ext-RKSJ-H", 932, false, false, "adobe-japan1-ucs2"},
    CMapName{"ext-RKSJ-V", 932, false, true, "adobe-japan1-ucs2"},
    CMapName{"78ms-RKSJ-H", 932, false, false, "adobe-japan1-ucs2"},
    CMapName{"78ms-RKSJ-V", 932, false, true, "adobe-japan1-ucs2"},
    CMapName{"83pv-RKSJ-H", 932, false, false, "adobe-japan1-ucs2"},
    CMapName{"90ms-RKSJ-H", 932, false, false, "adobe-japan1-ucs2"},
    CMapName{"90ms-RKSJ-V", 932, false, true, "adobe-japan1-ucs2"},
    CMapName{"90msp-RKSJ-H", 932, false, false, "adobe-japan1-ucs2"},
    CMapName{"90msp-RKSJ-V", 932, false, true, "adobe-japan1-ucs2"},
    CMapName{"90pv-RKSJ-H", 932, false, false, "adobe-japan1-ucs2"},
    CMapName{"EUC-H", 932, false, false, "adobe-japan1-ucs2"},
    CMapName{"EUC-V", 932, false, true, "adobe-japan1-ucs2"},
    CMapName{"ADD-RKSJ-H", 932, false, false, "adobe-japan1-ucs2"},
    CMapName{"UniJIS-UCS2-H", 0, true, false, "adobe-japan1-ucs2"},
    CMapName{"UniJIS-UCS2-V", 0, true, true, "adobe-japan1-ucs2"},
    CMapName{"UniJIS-UCS2-HW-H", 0, true, false, "adobe-japan1-ucs2"},
    CMapName{"UniJIS-UCS2-HW-V", 0, true, true, "adobe-japan1-ucs2"},
    CMapName{"H", 0, true, false, "adobe-japan1-ucs2"},
    CMapName{"V", 0, true, true, "adobe-japan1-ucs2"},
    CMapName{"KSC-EUC-H", 949, false, false, "adobe-korea1-ucs2"},
    CMapName{"KSC-EUC-V", 949, false, true, "adobe-korea1-ucs2"},
    CMapName{"KSCms-UHC-H", 949, false, false, "adobe-korea1-ucs2"},
    CMapName{"KSCms-UHC-V", 949, false, true, "adobe-korea1-ucs2"},
    CMapName{"KSCms-UHC-HW-H", 949, false, false, "adobe-korea1-ucs2"},
    CMapName{"KSCms-UHC-HW-V", 949, false, true, "adobe-korea1-ucs2"},
    CMapName{"KSCPC-UHC-H", 949, false, false, "adobe-korea1-ucs2"},
    CMapName{"KSCPC-UHC-V", 949, false, true, "adobe-korea1-ucs2"},
    CMapName{"UNIKS-UCS2-H", 0, true, false, "adobe-korea1-ucs2"},
    CMapName{"UNIKS_UCS2-V", 0, true, true, "adobe-korea1-ucs2"},
    // clang-format on
};

// Characters of a collection that the encoding does not tell, by its exact Ordering.
struct OrderingMap {
  std::string_view ordering;
  std::string_view unicodeMap;
};
inline constexpr std::array kOrderingMaps = {
    OrderingMap{"Japan1", "adobe-japan1-ucs2"},
    OrderingMap{"Korea1", "adobe-korea1-ucs2"},
    OrderingMap{"Gb1", "adobe-gb1-ucs2"},
    OrderingMap{"Cns1", "adobe-cns1-ucs2"},
};

}  // namespace kapdf
