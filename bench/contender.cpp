// SPDX-License-Identifier: MIT
#include "contender.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace {

using Parser = bool (*)(const Document &, TextSink *);

void AddParser(const std::string &name, Parser parser, std::vector<Contender> *contenders) {
  for (const bool perCharacter : {false, true}) {
    contenders->push_back({perCharacter ? name + ", a call each" : name,
                           [parser, perCharacter](const Document &document, Tally *tally) {
                             TextSink sink(tally, perCharacter);
                             return parser(document, &sink);
                           }});
  }
}

}  // namespace

std::vector<Contender> AllContenders(const std::vector<std::string> &otherLibraries) {
  std::vector<Contender> contenders;
  contenders.push_back({std::string(kFloor), ReadFloor});
  contenders.push_back({"vs_wml", FilterIn(VS_WML_LIBRARY)});
  for (const std::string &library : otherLibraries) {
    contenders.push_back({library, FilterIn(library)});
  }
#ifdef VS_WML_BENCH_EXPAT
  AddParser("expat", ReadExpat, &contenders);
#endif
#ifdef VS_WML_BENCH_LIBXML2
  AddParser("libxml2 XML", ReadLibxml2Xml, &contenders);
  AddParser("libxml2 HTML", ReadLibxml2Html, &contenders);
#endif
#ifdef VS_WML_BENCH_PUGIXML
  AddParser("pugixml", ReadPugixml, &contenders);
#endif
  return contenders;
}

Document LoadDocument(const std::string &path) {
  std::ifstream file(path, std::ios::binary);
  Document document{std::filesystem::path(path).stem().string(),
                    {std::istreambuf_iterator<char>(file), {}},
                    false};
  if (!file) throw std::runtime_error("cannot read " + path);
  document.shiftJis = document.bytes.substr(0, 200).find("\"Shift_JIS\"") != std::string::npos;
  return document;
}
