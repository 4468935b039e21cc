#include "upkeep/doctor/SchemaCheck.h"

#include <algorithm>
#include <cctype>

#include "console/Text.h"
#include "store/Schema.h"

namespace tsl {

namespace {

struct SchemaObject {
    std::string type;
    std::string name;
    std::string text;
};

std::vector<SchemaObject> ReadObjects(const CConnection& connection) {
    // What the engine makes for itself is no one's object.
    CQuery query(connection, "SELECT type, name, sql FROM sqlite_schema WHERE name NOT LIKE "
                             "'sqlite\\_%' ESCAPE '\\' ORDER BY name");
    std::vector<SchemaObject> objects;
    while (query.Step()) {
        objects.push_back(
            {query.Text(0).value_or(""), query.Text(1).value_or(""), query.Text(2).value_or("")});
    }
    return objects;
}

// The text as the file holds it: the engine leaves out that the table may be there already.
std::string StoredText(const std::wstring& name) {
    constexpr std::string_view kCondition = "IF NOT EXISTS ";
    std::string text = ToUtf8(CreateActionTableText(kTablePrefix, name));
    return text.erase(text.find(kCondition), kCondition.size());
}

// Without what a renaming or a tool changes in it and the engine does not mind.
std::string Essence(std::string text) {
    std::erase_if(
        text, [](char c) { return c == '"' || std::isspace(static_cast<unsigned char>(c)) != 0; });
    return text;
}

class CSchemaTeller {
public:
    CSchemaTeller(const CConnection& connection, const std::string& subject, Findings& findings)
        : m_objects(ReadObjects(connection)), m_subject(subject), m_findings(findings) {}

    FoundTables Tell(std::span<const wchar_t* const> names) {
        const size_t before = m_findings.size();
        for (const wchar_t* const name : names)
            TellTable(name);
        TellOthers();
        if (m_findings.size() == before) TellWhole(names.size());
        return m_found;
    }

private:
    void TellTable(const wchar_t* name) {
        const std::string table = ToUtf8(TableName(kTablePrefix, name));
        const auto object = std::ranges::find(m_objects, table, &SchemaObject::name);
        if (object == m_objects.end()) return;
        const std::string expected = StoredText(name);
        if (object->text == expected) {
            m_found.usable.push_back(table);
        } else if (Essence(object->text) == Essence(expected)) {
            m_found.usable.push_back(table);
            m_findings.push_back(
                Odd(m_subject,
                    table + " has the right columns, but another program has written its text"));
        } else {
            m_findings.push_back(
                Damaged(m_subject, table + " has other columns than the component's", kRecover));
        }
        m_objects.erase(object);
    }

    // What is left is not the component's.
    void TellOthers() {
        const std::string older = ToUtf8(TableName(kTablePrefix, kRecordIdTable));
        std::string others;
        for (const SchemaObject& object : m_objects) {
            if (object.name == older && object.type == "table") {
                m_found.ofOlderForm = true;
            } else if (object.type == "trigger") {
                m_findings.push_back(Damaged(
                    m_subject, "trigger " + object.name + " can keep records out", kRecover));
            } else {
                others += (others.empty() ? "" : ", ") + object.type + " " + object.name;
            }
        }
        if (m_found.ofOlderForm) {
            m_findings.push_back(Odd(m_subject, "of the older form: the first host converts it"));
        }
        if (!others.empty() && m_found.usable.empty() && !m_found.ofOlderForm) {
            m_findings.push_back(
                Damaged(m_subject, "none of the component's tables, but " + others, kRecover));
        } else if (!others.empty()) {
            m_findings.push_back(Odd(m_subject, "not the component's: " + others));
        }
    }

    void TellWhole(size_t count) {
        m_findings.push_back(
            m_found.usable.empty()
                ? Odd(m_subject, "no table yet: the next record makes it")
                : Fine(m_subject, "exact, " + std::to_string(m_found.usable.size()) + " of " +
                                      std::to_string(count) + (count == 1 ? " table" : " tables")));
    }

    std::vector<SchemaObject> m_objects;
    std::string m_subject;
    Findings& m_findings;
    FoundTables m_found;
};

} // namespace

FoundTables CheckSchema(const CConnection& connection, std::span<const wchar_t* const> names,
                        const std::string& subject, Findings& findings) {
    return CSchemaTeller(connection, subject, findings).Tell(names);
}

} // namespace tsl
