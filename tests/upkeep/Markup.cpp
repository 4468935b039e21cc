#include "tests/upkeep/Markup.h"

#include <regex>
#include <stdexcept>

namespace tsl::test {

namespace {

class CMarkupReader {
public:
    explicit CMarkupReader(std::string_view page) : m_rest(page) {}

    std::vector<MarkupElement> Read() {
        Expect("<!DOCTYPE html>\n");
        while (!m_rest.empty()) {
            if (m_rest.starts_with("</")) {
                ReadEnd();
            } else if (m_rest.front() == '<') {
                ReadStart();
            } else {
                ReadText();
            }
        }
        if (!m_open.empty()) Fail("not closed: " + m_open.back().name);
        return std::move(m_closed);
    }

private:
    [[noreturn]] void Fail(const std::string& message) const {
        throw std::runtime_error(message + " before: " + std::string(m_rest.substr(0, 80)));
    }
    void Expect(std::string_view text) {
        if (!m_rest.starts_with(text)) Fail("no " + std::string(text));
        m_rest.remove_prefix(text.size());
    }
    std::string Until(std::string_view stops) {
        const size_t length = m_rest.find_first_of(stops);
        if (length == std::string_view::npos) Fail("no end");
        std::string taken(m_rest.substr(0, length));
        m_rest.remove_prefix(length);
        return taken;
    }
    std::string Name(std::string_view stops) {
        std::string name = Until(stops);
        static const std::regex kName("[A-Za-z][A-Za-z0-9-]*");
        if (!std::regex_match(name, kName)) Fail("no name: " + name);
        return name;
    }
    // Only the references that the report makes are known.
    std::string Decoded(const std::string& text) const {
        static const std::pair<std::string_view, char> kReferences[] = {
            {"&amp;", '&'}, {"&lt;", '<'}, {"&gt;", '>'}, {"&quot;", '"'}, {"&#39;", '\''}};
        std::string decoded;
        for (size_t place = 0; place < text.size();) {
            if (text[place] == '>' || static_cast<unsigned char>(text[place]) < '\n') Fail("raw");
            if (text[place] != '&') {
                decoded += text[place++];
                continue;
            }
            size_t length = 0;
            for (const auto& [reference, character] : kReferences) {
                if (text.compare(place, reference.size(), reference) != 0) continue;
                length = reference.size();
                decoded += character;
            }
            if (length == 0) Fail("a bare &");
            place += length;
        }
        return decoded;
    }
    void ReadStart() {
        Expect("<");
        MarkupElement element{Name(" />"), {}, {}};
        while (m_rest.starts_with(' ')) {
            Expect(" ");
            const std::string attribute = Name("=> ");
            Expect("=\"");
            const std::string value = Until("\"");
            if (value.find('<') != std::string::npos) Fail("a raw <");
            if (!element.attributes.emplace(attribute, Decoded(value)).second) Fail("given twice");
            Expect("\"");
        }
        const bool closed = m_rest.starts_with('/');
        Expect(closed ? "/>" : ">");
        if (element.name == "style") {
            element.text = Until("<");
        }
        (closed ? m_closed : m_open).push_back(std::move(element));
    }
    void ReadEnd() {
        Expect("</");
        const std::string name = Name(">");
        Expect(">");
        if (m_open.empty() || m_open.back().name != name) Fail("wrong end of " + name);
        m_closed.push_back(std::move(m_open.back()));
        m_open.pop_back();
        if (!m_open.empty() && name != "style") m_open.back().text += m_closed.back().text;
    }
    void ReadText() {
        const size_t length = std::min(m_rest.find('<'), m_rest.size());
        const std::string text = Decoded(std::string(m_rest.substr(0, length)));
        m_rest.remove_prefix(length);
        if (!m_open.empty()) {
            m_open.back().text += text;
        } else if (text.find_first_not_of('\n') != std::string::npos) {
            Fail("text outside of all elements");
        }
    }

    std::string_view m_rest;
    std::vector<MarkupElement> m_open;
    std::vector<MarkupElement> m_closed;
};

bool HasClass(const MarkupElement& element, std::string_view className) {
    const auto found = element.attributes.find("class");
    if (found == element.attributes.end()) return false;
    const std::string classes = " " + found->second + " ";
    return classes.find(" " + std::string(className) + " ") != std::string::npos;
}

} // namespace

std::vector<const MarkupElement*> Markup::Named(std::string_view name,
                                                std::string_view className) const {
    std::vector<const MarkupElement*> found;
    for (const MarkupElement& element : elements) {
        if (element.name == name && (className.empty() || HasClass(element, className))) {
            found.push_back(&element);
        }
    }
    return found;
}

Markup ReadMarkup(std::string_view page) {
    Markup markup;
    try {
        markup.elements = CMarkupReader(page).Read();
    } catch (const std::runtime_error& error) {
        markup.error = error.what();
    }
    return markup;
}

} // namespace tsl::test
