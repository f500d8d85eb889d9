#include "zelvo/Hints/FileKind.hpp"

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>

#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/PackageIO/BoundedZIPArchive.hpp"
#include "Text/ASCII.hpp"
#include "zelvo/Execution/ConfinedChild.hpp"

namespace zelvo {
namespace {

using enum FileKind;

/// Enough for the first line of a table and the declarations of a web page.
constexpr std::size_t examinedBytes = 4096;

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view archiveStart = "PK\x03\x04";

constexpr std::pair<std::string_view, FileKind> starts[] = {
    {archiveStart, archive},
    {"\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", compoundFile},
    {"\x1F\x8B", gzip},
    {"%PDF-", pdf},
};

/// The same after white space, in lower case.
constexpr std::pair<std::string_view, FileKind> markupStarts[] = {
    {"<!doctype html", html}, {"<html", html}, {"<head", html}, {"<body", html},
    {"<table", html},         {"<meta", html}, {"<?xml", xml},
};

/// What the content types of a package hold, in lower case.
constexpr std::pair<std::string_view, FileKind> contentTypes[] = {
    {"ms-excel.sheet.binary", binaryWorkbook},          {"spreadsheetml.sheet.main", workbook},
    {"spreadsheetml.template.main", workbook},          {"ms-excel.sheet.macroenabled", workbook},
    {"ms-excel.template.macroenabled", workbook},       {"wordprocessingml.document.main", wordDocument},
    {"wordprocessingml.template.main", wordDocument},   {"ms-word.", wordDocument},
    {"presentationml.presentation.main", presentation}, {"presentationml.slideshow.main", presentation},
    {"presentationml.template.main", presentation},     {"ms-powerpoint.", presentation},
};
constexpr std::string_view openDocumentType = "application/vnd.oasis.opendocument.";

FileKind kindOfText(std::string_view text) {
  const auto isControl = [](char c) {
    return (c >= '\0' && c < ' ' && c != '\t' && c != '\n' && c != '\r' && c != '\f') || c == '\x7F';
  };
  if (std::ranges::any_of(text, isControl)) return unknown;
  const std::string_view line = text.substr(0, text.find_first_of("\r\n"));
  return line.find_first_of(",;\t") == std::string_view::npos ? FileKind::text : delimitedText;
}

FileKind kindByStart(std::string_view file) {
  if (file.empty()) return empty;
  for (const auto& [start, kind] : starts) {
    if (file.starts_with(start)) return kind;
  }
  std::string_view text = file.substr(0, examinedBytes);
  if (text.starts_with(byteOrderMark)) text.remove_prefix(byteOrderMark.size());
  text.remove_prefix(std::min(text.find_first_not_of(" \t\r\n"), text.size()));
  const std::string lowered = ASCII::lowercased(text);
  for (const auto& [start, kind] : markupStarts) {
    if (lowered.starts_with(start)) return kind;
  }
  return kindOfText(text);
}

FileKind kindOfArchive(ByteView file) {
  try {
    BoundedZIP::Archive entries(file);
    if (const auto* types = entries.find("[Content_Types].xml")) {
      const std::string text = ASCII::lowercased(entries.expand(*types).text());
      for (const auto& [type, kind] : contentTypes) {
        if (text.find(type) != std::string::npos) return kind;
      }
    }
    const auto* type = entries.find("mimetype");
    if (type != nullptr && entries.expand(*type).text().starts_with(openDocumentType)) return openDocument;
  } catch (const DocumentError&) {
    // An archive that breaks a rule is an archive still; the refusal says which rule.
  }
  return archive;
}

}  // namespace

FileKind kindOfFile(ByteView file) {
  const auto found = runConfinedChild([&] {
    FileKind kind = kindByStart(textOf(file));
    if (kind == archive) kind = kindOfArchive(file);
    return std::string(1, static_cast<char>(kind));
  });
  if (!found || found->size() != 1) return unknown;
  const auto kind = static_cast<std::uint8_t>(found->front());
  return kind <= static_cast<std::uint8_t>(FileKind::text) ? static_cast<FileKind>(kind) : unknown;
}

std::string_view sentence(FileKind kind) {
  switch (kind) {
    case unknown:
      return "It is not an Office document.";
    case empty:
      return "The file is empty.";
    case archive:
      return "";
    case workbook:
      return "It is a workbook.";
    case binaryWorkbook:
      return "It is a binary workbook (.xlsb). Save it as .xlsx.";
    case wordDocument:
      return "It is a Word document.";
    case presentation:
      return "It is a presentation.";
    case openDocument:
      return "It is an OpenDocument file, such as .ods. Save it as .xlsx.";
    case compoundFile:
      return "It is a compound file: an encrypted document, or one of the old formats (.xls, .doc, .ppt). "
             "Save "
             "it as .xlsx without a password.";
    case pdf:
      return "It is a PDF file.";
    case gzip:
      return "It is a gzip file. Decompress it first.";
    case html:
      return "It is a web page (HTML), whatever its name says. Some programs export such tables as .xls.";
    case xml:
      return "It is an XML file. Save it as .xlsx.";
    case delimitedText:
      return "It is text with separators, such as CSV, and can be read without this tool.";
    case text:
      return "It is a text file.";
  }
  return "";
}

}  // namespace zelvo
