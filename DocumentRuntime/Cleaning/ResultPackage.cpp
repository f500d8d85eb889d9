#include "DocumentRuntime/Cleaning/ResultPackage.hpp"

#include <utility>

#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/PackageIO/PartWriting.hpp"

namespace zelvo::Cleaning {
namespace {

constexpr std::string_view officeTypes = "application/vnd.openxmlformats-officedocument.spreadsheetml.";

void writeDefault(PartWriter& writer, std::string_view extension, std::string_view type) {
  writer.start(Tag::typeDefault);
  writer.attribute(Attribute::extension, extension);
  writer.attribute(Attribute::contentType, type);
  writer.end(Tag::typeDefault);
}

}  // namespace

void ResultPackage::add(std::string name, std::string_view type, std::string_view xml,
                        std::string_view place) {
  name.insert(0, "xl/");
  overrides_.push_back({"/" + name, type});
  pack(std::move(name), xml, place);
}

void ResultPackage::pack(std::string name, std::string_view xml, std::string_view place) {
  expandedBytes_ += xml.size();
  if (expandedBytes_ > BoundedZIP::maximumExpandedBytes)
    throw DocumentError::resourceLimit("more than 64 MiB of XML up to " + std::string(place));
  parts_.push_back(BoundedZIP::packed(std::move(name), bytesOf(xml)));
  packedBytes_ += parts_.back().data.size();
  if (packedBytes_ > BoundedZIP::maximumArchiveBytes)
    throw DocumentError::resourceLimit("more than 32 MiB in the archive up to " + std::string(place));
}

ByteBuffer ResultPackage::finish(PartWriter& writer, const std::stop_token& stop) {
  pack("xl/_rels/workbook.xml.rels", writeRelationships(writer, relationships_), "the relationships");
  pack("_rels/.rels", writeRelationships(writer, {{"rId1", "officeDocument", "xl/workbook.xml"}}),
       "the relationships");

  writer.begin(Tag::types, "the content types");
  writeDefault(writer, "rels", "application/vnd.openxmlformats-package.relationships+xml");
  writeDefault(writer, "xml", "application/xml");
  for (const Override& part : overrides_) {
    writer.start(Tag::typeOverride);
    writer.attribute(Attribute::partName, part.name);
    writer.attribute(Attribute::contentType, std::string(officeTypes).append(part.type).append("+xml"));
    writer.end(Tag::typeOverride);
  }
  pack("[Content_Types].xml", writer.finish(), "the content types");
  return BoundedZIP::writePacked(parts_, stop);
}

std::string_view ResultPackage::writeRelationships(PartWriter& writer,
                                                   const std::vector<Relationship>& list) {
  writer.begin(Tag::relationships, "the relationships");
  for (const auto& [identifier, type, target] : list) {
    writer.start(Tag::relationship);
    writer.attribute(Attribute::identifier, identifier);
    writer.attribute(Attribute::type, std::string(OOXML::relationshipTypes).append(type));
    writer.attribute(Attribute::target, target);
    writer.end(Tag::relationship);
  }
  return writer.finish();
}

}  // namespace zelvo::Cleaning
