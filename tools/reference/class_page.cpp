// SPDX-License-Identifier: MIT
// The page of one class, and that of the frame.
#include "tools/reference/class_page.hpp"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <stdexcept>

#include <fmt/format.h>

#include "tavelor/frame/component.hpp"
#include "tavelor/frame/record_class.hpp"
#include "tools/reference/choices.hpp"
#include "tools/reference/html.hpp"
#include "tools/reference/site.hpp"

namespace tavelor::reference {

namespace {

/// Whose members all record classes have; they are told of once, on a page of their own.
constexpr std::string_view kFrame = "RecordClass";
constexpr std::string_view kFramePage = "frame";

// ---------------------------------------------------------------------------------------------
// Errors: "raises 3021" leads to what 3021 is

bool saysRaises(std::string_view before) {
  while (!before.empty() && before.back() == ' ') before.remove_suffix(1);
  return before.ends_with("raises") || before.ends_with("Raises") || before.ends_with("raise");
}

std::string withErrors(std::string_view html, const std::set<std::int32_t>& errors) {
  constexpr std::int32_t kLeastOfRecordSets = 3000;
  std::string out;
  int links = 0;
  for (std::size_t at = 0; at < html.size();) {
    if (html[at] == '<') {
      const std::size_t end = std::min(html.find('>', at), html.size() - 1);
      const std::string_view tag = html.substr(at, end + 1 - at);
      if (tag.starts_with("<a ")) ++links;
      if (tag == "</a>") --links;
      out += tag;
      at = end + 1;
      continue;
    }
    const bool isInWord = at > 0 && (std::isalnum(static_cast<unsigned char>(html[at - 1])) != 0 ||
                                     html[at - 1] == '.' || html[at - 1] == ',');
    std::int32_t number = 0;
    const auto [end, fault] = std::from_chars(html.data() + at, html.data() + html.size(), number);
    if (fault != std::errc()) {
      out += html[at++];
      continue;
    }
    const auto length = static_cast<std::size_t>(end - html.data()) - at;
    const std::string_view digits = html.substr(at, length);
    const bool isError =
        links == 0 && !isInWord && errors.count(number) != 0 &&
        (number < 0 || number >= kLeastOfRecordSets || saysRaises(html.substr(0, at)));
    out += isError ? link(fmt::format("@/errors.html#{}", number), digits) : std::string(digits);
    at += length;
  }
  return out;
}

// ---------------------------------------------------------------------------------------------
// Members

struct ShownMember {
  const Member* slot = nullptr;
  std::size_t position = 0;  ///< from 1; 0 where it is another one in each class
  MemberComment comment;
  std::vector<const Choice*> choices;
};

std::vector<std::string> namesOf(const std::vector<Parameter>& parameters) {
  std::vector<std::string> names;
  for (const Parameter& each : parameters) names.push_back(each.name);
  return names;
}

/// A property with nothing but a variable behind it shows its own value, which has no comment.
std::string parameterTable(const ShownMember& shown, const Library& library) {
  const std::vector<Parameter>& parameters = shown.slot->parameters;
  if (parameters.empty()) return {};
  const bool told = !shown.comment.fields.empty();
  std::string out = fmt::format(
      "<div class=\"wide\"><table><tr><th>Parameter</th><th>Type</th><th></th>{}</tr>\n",
      told ? "<th>What it is</th>" : "");
  for (const Parameter& each : parameters) {
    std::string way = each.direction == Parameter::Direction::kOut     ? "out"
                      : each.direction == Parameter::Direction::kInOut ? "in and out"
                                                                       : "";
    if (each.optional) way += way.empty() ? "optional" : ", optional";
    out += fmt::format("<tr><td>{}</td><td>{}</td><td>{}</td>", code(each.name), escaped(each.type),
                       way);
    if (told) {
      const auto field = shown.comment.fields.find(each.name);
      out += fmt::format("<td>{}</td>", field == shown.comment.fields.end()
                                            ? ""
                                            : withErrors(field->second, library.errors));
    }
    out += "</tr>\n";
  }
  return out + "</table></div>\n";
}

std::string choicesHtml(const std::vector<const Choice*>& choices, const std::string& page,
                        const Library& library) {
  std::string out;
  for (const Choice* const choice : choices) {
    const bool kept = plainOf(choice->lead).starts_with("Kept");
    std::string lead = choice->lead.empty() ? "" : plainOf(choice->lead);
    if (lead.ends_with(':')) lead.pop_back();
    if (lead.size() > 90) lead.clear();
    // The item of a list, without its list.
    std::string item = choice->html;
    for (const std::string_view tag : {"<li>", "</li>"}) {
      const std::size_t at = tag == "<li>" ? item.find(tag) : item.rfind(tag);
      if (at != std::string::npos) item.erase(at, tag.size());
    }
    const Page& source = library.pages.at(page);
    const std::string anchor =
        choice->path.empty() ? "" : source.sections[choice->path.back()].anchor;
    out += fmt::format("<div class=\"choice{}\"><b class=\"lead\">{}</b>{} {}</div>\n",
                       kept ? " kept" : "", escaped(lead), withErrors(item, library.errors),
                       link(fmt::format("{}#{}", addressOfPage(page), anchor),
                            fmt::format("<span class=\"soft\">{}</span>", escaped(source.title))));
  }
  return out;
}

/// `choices` is HTML.
std::string memberSection(const ShownMember& shown, const std::string& choices,
                          const Library& library) {
  const Member& slot = *shown.slot;
  const std::string position = shown.position == 0 ? "" : fmt::format("Slot {}. ", shown.position);
  std::string result;
  if (!slot.result.empty()) result = fmt::format("Gives {}. ", code(slot.result));
  return fmt::format(
      R"(<section class="member" id="{name}">
<h3>{name}</h3>
<pre class="statement">{signature}</pre>
{text}
{group}{table}{choices}<p class="soft">{position}{result}C++: {declaration}</p>
</section>
)",
      fmt::arg("name", escaped(slot.name)),
      fmt::arg("signature", (slot.property ? "property " : "") + escaped(slot.signature())),
      fmt::arg("text", withErrors(shown.comment.text, library.errors)),
      fmt::arg("group", shown.comment.group.empty()
                            ? ""
                            : fmt::format("<div class=\"note\">{}</div>\n",
                                          withErrors(shown.comment.group, library.errors))),
      fmt::arg("table", parameterTable(shown, library)), fmt::arg("choices", choices),
      fmt::arg("position", position), fmt::arg("result", result),
      fmt::arg("declaration", link(shown.comment.address, code(shown.comment.declaration))));
}

// ---------------------------------------------------------------------------------------------
// Facts, modes, table

std::string modeAnchor(const OpenedMode& mode) {
  return "mode-" + (mode.word.empty() ? std::string("any-other-word") : anchorOf(mode.word));
}

std::string modeName(const OpenedMode& mode) {
  return mode.word.empty() ? "any other word" : code(mode.word);
}

std::string modesHtml(const ClassEntry& entry) {
  if (entry.data.modes.empty()) return {};
  std::string out =
      "<h2 id=\"modes\">Modes</h2>\n<p>What <a href=\"#IniciaRs\"><code>IniciaRs</code></a> opens "
      "for each word, to the letter; <code>{id}</code> is its argument of that name, as text. "
      "Words "
      "compare exactly; any other word becomes \"todos\".</p>\n";
  for (const OpenedMode& mode : entry.data.modes) {
    out += fmt::format("<h3 id=\"{}\">{}</h3>\n<pre class=\"statement\">{}</pre>\n",
                       modeAnchor(mode), modeName(mode), escaped(mode.statement));
    if (mode.made) {
      out +=
          "<p class=\"soft\">Made when it is opened: as sent on 20 November 2026, in a new "
          "installation.</p>\n";
    }
    if (!mode.refusal.empty()) {
      out += fmt::format("<p class=\"refused\">Refused: {}</p>\n", escaped(mode.refusal));
      continue;
    }
    std::string columns;
    for (const Column& column : mode.columns) {
      if (!columns.empty()) columns += ", ";
      columns += fmt::format("{}&nbsp;<span class=\"soft\">{}</span>", code(column.name),
                             escaped(column.type));
    }
    out += fmt::format("<p>{}</p>\n", columns);
  }
  return out;
}

std::string factsHtml(const ClassEntry& entry, const Library& library) {
  std::string out = "<dl class=\"facts\">\n";
  const auto fact = [&](std::string_view name, const std::string& html) {
    out += fmt::format("<dt>{}</dt><dd>{}</dd>\n", name, html);
  };
  const Component& component = *entry.data.component;
  fact("Class identifier", code(component.classId()));
  if (!component.word().empty()) fact("Class word", code(component.word()));
  if (const ClassInfo* const info = entry.data.info) {
    constexpr std::pair<int, std::string_view> kDatabases[] = {{selector::kFurther, "further"},
                                                               {selector::kMain, "main"},
                                                               {selector::kDocuments, "documents"},
                                                               {selector::kHistoric, "historic"},
                                                               {selector::kImport, "import"}};
    for (const auto& [number, label] : kDatabases) {
      if (number == info->selector) fact("Database", fmt::format("{}, selector {}", label, number));
    }
    fact("Next code",
         fmt::format("after the greatest {}{}", code(info->codeColumn.text()),
                     info->codeWidth == 0 ? ""
                                          : fmt::format(", with zeros to {} characters by "
                                                        "<code>AddNew</code>",
                                                        info->codeWidth)));
    fact("<code>Update</code> writes",
         info->update == UpdateForm::kCurrentRow ? "the current row" : "all rows that are pending");
    fact("<code>Delete</code>", info->remove == DeleteForm::kWrites
                                    ? "writes at once"
                                    : "marks the row; <code>Update</code> writes");
    fact("<code>FindRecord</code> compares", info->find == FindForm::kWhole
                                                 ? "the whole first field"
                                                 : "the beginning of the first field");
    if (!info->restoresOrder) fact("Order", "that of the statement; none is remembered");
  }
  if (!entry.data.events.empty()) {
    fact("Events", fmt::format("<code>MoveComplete</code> on {}", code(entry.data.events)));
  }
  fact("Header", link(entry.comment.address, code(entry.comment.header)));
  fact("Told of in", link(addressOfPage(entry.page), escaped(library.pages.at(entry.page).title)));
  return out + "</dl>\n";
}

const Table* tableOf(const ClassEntry& entry, const Library& library) {
  if (entry.data.info == nullptr) return nullptr;
  const auto found =
      std::find_if(library.tables.begin(), library.tables.end(),
                   [&](const Table& table) { return table.name == entry.data.info->table; });
  if (found == library.tables.end()) {
    throw std::runtime_error(fmt::format("{}: no table {} in the schema",
                                         entry.data.component->name(), entry.data.info->table));
  }
  return &*found;
}

std::string tableHtml(const Table& table) {
  return fmt::format(
      "<h2 id=\"table\">Table {}</h2>\n<p>{} Databases: {}. {}</p>\n{}", escaped(table.name),
      escaped(table.comment), escaped(table.databases),
      link(addressOfTable(table), fmt::format("All tables of the family {}", table.family)),
      columnTable(table.columns, "column-"));
}

std::string frameTable(const std::vector<ShownMember>& members) {
  if (members.empty()) return {};
  std::string out = fmt::format(
      "<h2 id=\"the-frame\">The frame</h2>\n<p>Members that every record class has; {} tells "
      "all.</p>\n<div class=\"wide\"><table><tr><th>Slot</th><th>Member</th><th></th></tr>\n",
      link(addressOfClass(kFramePage), "the frame"));
  for (const ShownMember& each : members) {
    out +=
        fmt::format("<tr id=\"{}\"><td class=\"slot\">{}</td><td>{}</td><td>{}</td></tr>\n",
                    escaped(each.slot->name), each.position,
                    link(addressOfClass(kFramePage, each.slot->name), code(each.slot->signature())),
                    each.comment.brief);
  }
  return out + "</table></div>\n";
}

// ---------------------------------------------------------------------------------------------
// Pages

void writeClass(const ClassEntry& entry, const std::vector<ShownMember>& own,
                const std::vector<ShownMember>& frame, const std::vector<const Choice*>& choices,
                const Library& library, Site& site) {
  const std::string& name = entry.data.component->name();
  std::string body = fmt::format(
      "<h1>{}</h1>\n<p class=\"soft\">{}</p>\n{}\n{}", escaped(name), escaped(entry.keeps),
      withErrors(entry.comment.text, library.errors), factsHtml(entry, library));
  std::string chips;
  const auto chip = [&](std::string_view anchor, std::string_view text) {
    chips += link(fmt::format("#{}", anchor), text) + ' ';
  };
  if (!entry.data.modes.empty()) chip("modes", "Modes");
  if (entry.data.info != nullptr) chip("table", "Table");
  if (!choices.empty()) chip("choices", "Choices and oddities");
  if (!frame.empty()) chip("the-frame", "The frame");
  body += fmt::format("<p class=\"chips\">{}</p>\n<p class=\"chips\">", chips);
  for (const ShownMember& each : own) {
    body += link("#" + each.slot->name, code(each.slot->name)) + ' ';
  }
  body += "</p>\n<h2 id=\"members\">Members</h2>\n";
  for (const ShownMember& each : own) {
    body += memberSection(each, choicesHtml(each.choices, entry.page, library), library);
  }
  body += modesHtml(entry);
  if (const Table* const table = tableOf(entry, library)) body += tableHtml(*table);
  if (!choices.empty()) {
    body += "<h2 id=\"choices\">Choices and oddities</h2>\n" +
            choicesHtml(choices, entry.page, library);
  }
  body += frameTable(frame);
  site.write(fmt::format("classes/{}.html", name), {.title = name, .alternate = {}}, body);

  const std::string address = addressOfClass(name);
  site.add({name, "class", address, entry.keeps + ". " + plainOf(entry.comment.text)});
  for (const ShownMember& each : own) {
    std::string text = plainOf(each.comment.text);
    for (const Choice* choice : each.choices) text += ' ' + plainOf(choice->html);
    site.add({fmt::format("{}.{}", name, each.slot->name), "member",
              addressOfClass(name, each.slot->name), std::move(text)});
  }
  for (const OpenedMode& mode : entry.data.modes) {
    if (mode.word.empty()) continue;
    site.add({fmt::format("{} \"{}\"", name, mode.word), "mode",
              addressOfClass(name, modeAnchor(mode)), mode.statement});
  }
}

void writeFrame(const std::map<std::string, ShownMember>& members, const Choices& choices,
                const Library& library, Site& site) {
  std::string body = fmt::format("<h1>The frame</h1>\n{}\n<p class=\"chips\">",
                                 withErrors(library.comments.ofClass(kFrame).text, library.errors));
  for (const auto& [name, each] : members) body += link("#" + name, code(name)) + ' ';
  body += "</p>\n";
  for (const auto& [name, each] : members) {
    std::string told;
    for (const auto& [page, choice] : choices.ofFrame(name)) {
      told += choicesHtml({choice}, page, library);
    }
    body += memberSection(each, told, library);
    site.add({name, "frame", addressOfClass(kFramePage, name),
              plainOf(each.comment.text) + ' ' + plainOf(told)});
  }
  site.write(fmt::format("classes/{}.html", kFramePage), {.title = "The frame", .alternate = {}},
             body);
}

}  // namespace

std::string addressOfClass(std::string_view name, std::string_view member) {
  return fmt::format("{}classes/{}.html{}{}", kRoot, name, member.empty() ? "" : "#", member);
}

std::string addressOfTable(const Table& table) {
  return fmt::format("{}tables/{}.html#{}", kRoot, table.family, table.name);
}

std::string addressOfPage(std::string_view path) {
  std::string_view stem = path.substr(0, path.rfind('.'));
  if (stem == "README") stem = "index";
  if (stem == "README.es") stem = "index.es";
  return fmt::format("{}{}.html", kRoot, stem);
}

std::string columnTable(const std::vector<Column>& columns, const std::string& idPrefix) {
  std::string out =
      "<div class=\"wide\"><table><tr><th>Column</th><th>Type</th><th></th><th>Default</th>"
      "<th>What it holds</th></tr>\n";
  for (const Column& column : columns) {
    std::string traits = column.key ? "key" : column.nullable ? "" : "not Null";
    if (column.numbered) traits += traits.empty() ? "numbered" : ", numbered";
    out += fmt::format(
        "<tr id=\"{}{}\"><td>{}</td><td>{}</td><td>{}</td><td>{}</td><td>{}</td></tr>\n", idPrefix,
        escaped(column.name), code(column.name), escaped(column.type), traits,
        column.byDefault.empty() ? "" : code(column.byDefault), escaped(column.comment));
  }
  return out + "</table></div>\n";
}

void writeClasses(const Library& library, Site& site) {
  std::string missing;
  std::map<std::string, ShownMember> frame;
  const Choices choices(library);
  for (const ClassEntry& entry : library.classes) {
    const Component& component = *entry.data.component;
    std::vector<ShownMember> own;
    std::vector<ShownMember> ofFrame;
    for (std::size_t i = 0; i < component.members().size(); ++i) {
      const Member& slot = component.members()[i];
      const auto comment =
          library.comments.ofMember(component.name(), slot.name, namesOf(slot.parameters));
      if (!comment || comment->text.empty()) {
        missing += fmt::format("\n{}: {}.{} has no comment", entry.comment.header, component.name(),
                               slot.name);
        continue;
      }
      ShownMember shown{&slot, i + 1, *comment,
                        choices.ofMember(entry, slot.name, comment->owner == kFrame)};
      if (comment->owner == kFrame) {
        frame.try_emplace(slot.name, ShownMember{&slot, 0, *comment, {}});
      }
      // What a page tells of a frame member for this class alone belongs here.
      (comment->owner == kFrame && shown.choices.empty() ? ofFrame : own)
          .push_back(std::move(shown));
    }
    writeClass(entry, own, ofFrame, choices.ofClass(entry), library, site);
  }
  if (!missing.empty()) throw std::runtime_error("Members without a comment:" + missing);
  writeFrame(frame, choices, library, site);
}

}  // namespace tavelor::reference
