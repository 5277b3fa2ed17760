#include "writer/metadata.h"

#include <string_view>

namespace kapdf {
namespace {

constexpr int kRoomLines = 20;  // for edits in place
constexpr size_t kRoomColumns = 100;

// "%s" are, in order: date, date, title, subject, copyright, author, keywords.
constexpr std::string_view kTemplate =
    "<?xpacket begin=\"\xEF\xBB\xBF\" id=\"W5M0MpCehiHzreSzNTczkc9d\"?>\n"
    "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\" x:xmptk=\"3.1-701\">\n"
    "   <rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\">\n"
    "      <rdf:Description rdf:about=\"\"\n"
    "            xmlns:pdf=\"http://ns.adobe.com/pdf/1.3/\">\n"
    "         <pdf:Producer>ZV Software V12</pdf:Producer>\n"
    "      </rdf:Description>\n"
    "      <rdf:Description rdf:about=\"\"\n"
    "            xmlns:xap=\"http://ns.adobe.com/xap/1.0/\">\n"
    "         <xap:CreateDate>%s</xap:CreateDate>\n"
    "         <xap:CreatorTool>kaPDF.dll Version 2.2</xap:CreatorTool>\n"
    "         <xap:ModifyDate>%s</xap:ModifyDate>\n"
    "      </rdf:Description>\n"
    "      <rdf:Description rdf:about=\"\"\n"
    "            xmlns:dc=\"http://purl.org/dc/elements/1.1/\">\n"
    "         <dc:format>application/pdf</dc:format>\n"
    "         <dc:title>\n"
    "            <rdf:Alt>\n"
    "               <rdf:li xml:lang=\"x-default\">%s</rdf:li>\n"
    "            </rdf:Alt>\n"
    "         </dc:title>\n"
    "         <dc:description>\n"
    "            <rdf:Alt>\n"
    "               <rdf:li xml:lang=\"x-default\">%s</rdf:li>\n"
    "            </rdf:Alt>\n"
    "         </dc:description>\n"
    "         <dc:rights>\n"
    "            <rdf:Alt>\n"
    "               <rdf:li xml:lang=\"x-default\">%s</rdf:li>\n"
    "            </rdf:Alt>\n"
    "         </dc:rights>\n"
    "         <dc:creator>\n"
    "            <rdf:Seq>\n"
    "               <rdf:li>%s</rdf:li>\n"
    "            </rdf:Seq>\n"
    "         </dc:creator>\n"
    "         <dc:subject>\n"
    "            <rdf:Bag>\n"
    "               <rdf:li>%s</rdf:li>\n"
    "            </rdf:Bag>\n"
    "         </dc:subject>\n"
    "      </rdf:Description>\n"
    "\t  <rdf:Description rdf:about=\"\"\n"  // these tabs are deliberate
    "            xmlns:pdfaid=\"http://www.aiim.org/pdfa/ns/id/\">\n"
    "         <pdfaid:part>1</pdfaid:part>\n"
    "         <pdfaid:conformance>B</pdfaid:conformance>\n"
    "      </rdf:Description>\n"
    "\t  </rdf:RDF>\n"
    "</x:xmpmeta>\n";

}  // namespace

std::string MetadataPacket(const MetadataTexts &texts) {
  const std::string *const values[] = {&texts.date,      &texts.date,   &texts.title,   &texts.subject,
                                       &texts.copyright, &texts.author, &texts.keywords};
  std::string packet;
  size_t at = 0;
  for (const std::string *value : values) {
    const size_t place = kTemplate.find("%s", at);
    packet.append(kTemplate.substr(at, place - at)).append(*value);
    at = place + 2;
  }
  packet.append(kTemplate.substr(at));
  for (int i = 0; i < kRoomLines; ++i) packet.append(kRoomColumns, ' ').append("\n");
  return packet.append("<?xpacket end=\"w\"?>\n");
}

}  // namespace kapdf
