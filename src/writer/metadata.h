// The metadata packet of a PDF/A document.
#pragma once

#include <string>

namespace kapdf {

// All in the system code page; nothing is escaped for XML.
struct MetadataTexts {
  std::string date;  // of creation and change: "yyyy-MM-ddTHH:mm:ss+02:00"
  std::string title, subject, copyright, author, keywords;
};

std::string MetadataPacket(const MetadataTexts &texts);

}  // namespace kapdf
