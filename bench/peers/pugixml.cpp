// SPDX-License-Identifier: MIT
// A tree in memory, whose text is then walked.
#include <pugixml.hpp>

#include "contender.h"

namespace {

class TextWalker : public pugi::xml_tree_walker {
 public:
  explicit TextWalker(TextSink *sink) : sink_(sink) {}
  bool for_each(pugi::xml_node &node) override {
    if (node.type() == pugi::node_pcdata || node.type() == pugi::node_cdata) {
      sink_->Text(node.value(), std::char_traits<char>::length(node.value()));
    } else {
      sink_->Element();
    }
    return true;
  }

 private:
  TextSink *sink_;
};

}  // namespace

bool ReadPugixml(const Document &document, TextSink *sink) {
  if (document.shiftJis) return false;  // it would take the bytes for UTF-8
  pugi::xml_document tree;
  TextWalker walker(sink);
  return tree.load_buffer(document.bytes.data(), document.bytes.size(),
                          pugi::parse_default | pugi::parse_ws_pcdata) &&
         tree.traverse(walker);
}
