// Our reading of generated documents side by side with pugixml's. The documents stay inside the
// subset this reader accepts, and inside what both readers see alike; where the rules of the
// two differ, the generator keeps away from the difference and the comparison says why:
//
// - Element text: ours is trimmed and loses tabs and line ends inside it; pugixml is asked to
//   trim (parse_trim_pcdata), and the generated text has no tabs or line ends inside.
// - Attribute values: a line end inside a tag vanishes for us and becomes a space for pugixml;
//   values carry no line ends, and pugixml keeps tabs (no parse_wconv_attribute).
// - Entity references: ours knows quot, amp, lt and gt, in any case of letters; pugixml also
//   knows apos and numeric references, in lower case only. Only the four, in lower case, appear.
// - A line end inside a tag separates attributes for pugixml and nothing for us; line ends
//   appear only next to spaces.
// - Mixed content, text behind a self-closed element and anything behind the root are read
//   differently; the generator makes none of them.
// - A comment before the root ends our reading with no root at all; pugixml reads on. Comments
//   appear only inside elements.
// - Names: pugixml accepts more characters; names here use letters, digits, _ - . : only.
// - Duplicate attribute names stay two for both readers on the node level, but an item keeps
//   one; names are unique within an element.
#include "common/test_support.h"
#include "xml/xml_tree_templ.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <set>
#include <string>
#include <vector>

#if defined(STATS_MNG_HAVE_PUGIXML)
#include <pugixml.hpp>
#endif

namespace {

// A neutral form of one element: name, attributes in order, text, children.
struct element_s {
    std::string name;
    std::vector<std::pair<std::string, std::string>> attributes;
    std::string text;
    std::vector<element_s> children;
};

class document_maker_c {
  public:
    explicit document_maker_c(std::uint32_t seed) : _random(seed) {}

    std::string make(element_s& expected) {
        std::string out;
        if (pick(0, 3) == 0) out += "\xEF\xBB\xBF";
        out += "<?xml version=\"1.0\"";
        if (pick(0, 1)) out += " encoding=\"UTF-8\"";
        out += "?>";
        out += blank_between_tags();
        element(out, expected, 0);
        return out;
    }

  private:
    int pick(int low, int high) { return std::uniform_int_distribution<int>(low, high)(_random); }

    std::string blank_between_tags() {
        static const char* blanks[] = {"", "\n", "\r\n", "\n\t\t", "  "};
        return blanks[pick(0, 4)];
    }

    // A space, maybe with a line end after it.
    std::string blank_in_tag() {
        static const char* blanks[] = {" ", " \n", "\t", " \r\n\t", "  "};
        return blanks[pick(0, 4)];
    }

    std::string name() {
        static const std::string first = "abcXYZ_";
        static const std::string rest = "abcXYZ_0189-.:";
        std::string out(1, first[pick(0, static_cast<int>(first.size()) - 1)]);
        for (int n = pick(0, 6); n > 0; --n)
            out += rest[pick(0, static_cast<int>(rest.size()) - 1)];
        return out;
    }

    // Raw text and what it decodes to.
    std::pair<std::string, std::string> content(bool for_attribute) {
        static const char* pieces[][2] = {
            {"&quot;", "\""}, {"&amp;", "&"}, {"&lt;", "<"}, {"&gt;", ">"},
            {"x", "x"},       {"1.5", "1.5"}, {"?", "?"},    {"\xC3\xA9", "\xC3\xA9"},
            {"'", "'"},       {"=", "="},
        };
        std::string raw, decoded;
        for (int n = pick(0, 8); n > 0; --n) {
            if (for_attribute && pick(0, 5) == 0) {
                const char* blank = pick(0, 1) ? " " : "\t";
                raw += blank;
                decoded += blank;
                continue;
            }
            if (!for_attribute && pick(0, 5) == 0 && !decoded.empty()) {
                raw += ' ';
                decoded += ' ';
                continue;
            }
            const auto& piece = pieces[pick(0, 9)];
            raw += piece[0];
            decoded += piece[1];
        }
        return {raw, decoded};
    }

    void element(std::string& out, element_s& e, int depth) {
        e.name = name();
        out += "<" + e.name;
        std::set<std::string> used;
        for (int n = pick(0, 4); n > 0; --n) {
            std::string attr = name();
            if (!used.insert(attr).second) continue;
            auto [raw, decoded] = content(true);
            out += blank_in_tag() + attr + "=\"" + raw + "\"";
            e.attributes.emplace_back(attr, decoded);
        }
        int kind = depth < 5 ? pick(0, 2) : pick(0, 1);
        if (kind == 0) {
            out += pick(0, 1) ? "/>" : "></" + e.name + ">";
        } else if (kind == 1) {
            auto [raw, decoded] = content(false);
            // Text must begin and end with something that is not blank to survive trimming.
            raw = "t" + raw + "t";
            decoded = "t" + decoded + "t";
            out += ">" + std::string(pick(0, 1) ? " " : "") + raw + "</" + e.name + ">";
            e.text = decoded;
        } else {
            out += ">";
            for (int n = pick(1, 4); n > 0; --n) {
                out += blank_between_tags();
                if (pick(0, 4) == 0) out += "<!-- inside -->" + blank_between_tags();
                e.children.emplace_back();
                element(out, e.children.back(), depth + 1);
            }
            out += blank_between_tags() + "</" + e.name + ">";
        }
    }

    std::mt19937 _random;
};

element_s from_item(const xml_item_c* item) {
    element_s e;
    e.name = item->label ? item->label : "";
    for (std::uint64_t i = 0; i < item->get_attribute_count(); ++i) {
        labeled_value_c* a = item->get_attribute(i);
        e.attributes.emplace_back(a->get_label(), a->to_text());
    }
    e.text = item->text ? item->text : "";
    for (const xml_item_c* c = item->first_child_item(); c; c = c->next_item())
        e.children.push_back(from_item(c));
    return e;
}

#if defined(STATS_MNG_HAVE_PUGIXML)
element_s from_pugi(const pugi::xml_node& node) {
    element_s e;
    e.name = node.name();
    for (const pugi::xml_attribute& a : node.attributes())
        e.attributes.emplace_back(a.name(), a.value());
    for (const pugi::xml_node& c : node.children()) {
        if (c.type() == pugi::node_element)
            e.children.push_back(from_pugi(c));
        else if (c.type() == pugi::node_pcdata)
            e.text += c.value();
    }
    return e;
}
#endif

void expect_same(const element_s& ours, const element_s& theirs, const std::string& where) {
    ASSERT_EQ(ours.name, theirs.name) << where;
    ASSERT_EQ(ours.attributes, theirs.attributes) << where << "/" << ours.name;
    ASSERT_EQ(ours.text, theirs.text) << where << "/" << ours.name;
    ASSERT_EQ(ours.children.size(), theirs.children.size()) << where << "/" << ours.name;
    for (std::size_t i = 0; i < ours.children.size(); ++i)
        expect_same(ours.children[i], theirs.children[i], where + "/" + ours.name);
}

} // namespace

// The generator's own expectation and our reading agree: a check of the generator itself, and
// the half of the comparison that runs where pugixml is not built.
TEST(xml_peer, generated_documents_read_as_generated) {
    test_support::temp_dir_c dir;
    const std::string path = dir.join("doc.xml");
    for (std::uint32_t seed = 1; seed <= 1500; ++seed) {
        document_maker_c maker(seed);
        element_s expected;
        std::string text = maker.make(expected);
        test_support::write_file(path, text);
        xml_tree_c tree;
        ASSERT_TRUE(tree.load(path.c_str())) << "seed " << seed << "\n" << text;
        ASSERT_NE(tree.get_root(), nullptr);
        expect_same(from_item(tree.get_root()), expected, "seed " + std::to_string(seed));
        if (HasFatalFailure()) return;
    }
}

TEST(xml_peer, names_attributes_and_texts_equal_pugixml) {
#if !defined(STATS_MNG_HAVE_PUGIXML)
    GTEST_SKIP() << "pugixml is built for Linux only here (Debian has no MinGW package of it)";
#else
    test_support::temp_dir_c dir;
    const std::string path = dir.join("doc.xml");
    const unsigned flags =
        (pugi::parse_default | pugi::parse_trim_pcdata) & ~pugi::parse_wconv_attribute;
    for (std::uint32_t seed = 1; seed <= 1500; ++seed) {
        document_maker_c maker(seed);
        element_s expected;
        std::string text = maker.make(expected);
        test_support::write_file(path, text);
        xml_tree_c tree;
        ASSERT_TRUE(tree.load(path.c_str())) << "seed " << seed << "\n" << text;
        pugi::xml_document peer;
        pugi::xml_parse_result result = peer.load_buffer(text.data(), text.size(), flags);
        ASSERT_TRUE(result) << "seed " << seed << ": " << result.description() << "\n" << text;
        ASSERT_NE(tree.get_root(), nullptr) << "seed " << seed;
        expect_same(from_item(tree.get_root()), from_pugi(peer.document_element()),
                    "seed " + std::to_string(seed));
        if (HasFatalFailure()) return;
    }
#endif
}
