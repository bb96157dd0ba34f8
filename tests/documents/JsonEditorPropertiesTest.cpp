#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include "browsersweep/documents/internal/JsonEditor.h"

#include "tests/support/Bytes.h"

namespace browsersweep {
namespace {

using tests::bytes;

std::string randomSpace() {
    return *rc::gen::resize(2, rc::gen::container<std::string>(rc::gen::element(' ', '\n', '\t')));
}

std::string randomString() {
    std::string text = "\"";
    for (int count = *rc::gen::inRange(0, 5); count > 0; --count) {
        text += *rc::gen::element<std::string>("a", "\\\"", "\\\\", ",", "{", "]", "\\u00e9", ":");
    }
    return text + "\"";
}

std::string randomValue(int depth) {
    const int kind = *rc::gen::inRange(0, depth > 0 ? 6 : 3);
    if (kind == 0) {
        return *rc::gen::element<std::string>("1.0e5", "-0", "1.10", "true", "null", "1E+2");
    }
    if (kind < 3) {
        return randomString();
    }
    const bool isObject = kind > 4;
    std::string text = isObject ? "{" : "[";
    const int count = *rc::gen::inRange(0, 4);
    for (int index = 0; index < count; ++index) {
        text += (index > 0 ? "," : "") + randomSpace();
        text += isObject ? randomString() + randomSpace() + ":" + randomSpace() : "";
        text += randomValue(depth - 1) + randomSpace();
    }
    return text + (count == 0 ? randomSpace() : "") + (isObject ? "}" : "]");
}

/** The texts of a value's members, without what was taken out, in their order. */
std::vector<std::string> pieces(const JsonEditor& editor, JsonEditor::Value value) {
    std::vector<std::string> found;
    for (const auto& member : editor.members(value)) {
        found.push_back(member.key + "=" + std::string(editor.text(member.value)));
    }
    return found;
}

RC_GTEST_PROP(JsonEditorProperties, whateverIsTakenOutTheRestIsADocumentOfTheSameBytes, ()) {
    const std::string text =
        randomSpace() + *rc::gen::element<std::string>("[", "{\"k\":") + randomValue(4);
    const std::string whole = text + (text.find("{\"k\":") < 3 ? "}" : "]") + randomSpace();
    JsonEditor editor(bytes(whole));
    RC_ASSERT(editor.edited() == whole);
    const auto inner = editor.members(editor.root()).at(0).value;
    const auto members = editor.members(inner);
    std::vector<bool> isRemoved;
    std::vector<std::string> expected;
    for (const std::string& piece : pieces(editor, inner)) {
        isRemoved.push_back(*rc::gen::arbitrary<bool>());
        if (!isRemoved.back()) {
            expected.push_back(piece);
        }
    }
    editor.remove(members, isRemoved);
    const JsonEditor after(bytes(editor.edited()));
    RC_ASSERT(pieces(after, after.members(after.root()).at(0).value) == expected);
}

}  // namespace
}  // namespace browsersweep
