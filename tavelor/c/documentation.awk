# SPDX-License-Identifier: MIT
# Writes the comments of the public headers as the tables of documentation.hpp: of each class its own
# and that of each of its members, overloads joined. A heading "// ---- X. More" above members is
# told with each of them where it says more than a title.
#   LC_ALL=C awk -v to=documentation_tables.cpp -f documentation.awk HEADER...
BEGIN { classes = members = 0 }
FNR == 1 { class = ""; comment = ""; declaration = ""; heading = "" }

function quoted(text) {
  gsub(/["\\]/, "\\\\&", text); gsub(/\n/, "\\n", text)
  return "\"" text "\""
}
# The class behind ": public", and behind it the one that it is a template of, if that is one.
function basesIn(line,    base, frame) {
  if (!match(line, /: public [A-Za-z0-9_]+/)) return ""
  base = substr(line, RSTART + 9, RLENGTH - 9)
  frame = substr(line, RSTART + RLENGTH)
  if (match(frame, /^<[A-Za-z0-9_]+>/)) base = base " " substr(frame, 2, RLENGTH - 2)
  return base
}
# A paragraph's lines are one; an empty line begins another.
function add(text,    line) {
  if (text == "") comment = comment == "" ? "" : comment "\n"
  else comment = comment (comment == "" || comment ~ /\n$/ ? "" : " ") text
}
function keep(name,    told) {
  told = comment
  if (told != "" && heading != "") told = told "\n" heading
  if (told != "" && name != "") {
    if (!((class, name) in place)) { place[class, name] = members; of[members] = class; called[members] = name; text[members++] = told }
    else if (index(text[place[class, name]], told) == 0) text[place[class, name]] = text[place[class, name]] "\n" told
  }
  comment = ""
}

/^ *\/\/\// { line = $0; sub(/^ *\/\/\/ ?/, "", line); add(line); next }
/^  \/\/ ---- / { heading = $0; sub(/^  \/\/ -+ /, "", heading); if (heading !~ /\. ./) heading = ""; comment = ""; next }
/^ *\/\// { next }
/^ *$/ { comment = ""; next }
/^(class|struct) / && !/;$/ {
  line = $0; sub(/^(class|struct) (TAVELOR_API )?/, "", line)
  name = line; sub(/[^A-Za-z0-9_].*/, "", name)
  class = name; heading = ""
  names[classes] = name; bases[classes] = basesIn(line); told[classes++] = comment
  comment = ""; next
}
/^template / && class == "" { next }
# Bases that a class's own line has no room for.
/^    : public / && bases[classes - 1] == "" { bases[classes - 1] = basesIn($0); next }
/^}/ { class = ""; comment = ""; next }
class == "" { comment = ""; next }
# A declaration of the class itself begins two blanks in; what is deeper goes on or is inside of one.
/^  [^ }]/ || declaration != "" {
  line = $0
  after = ""
  if (match(line, /\/\/\/< ?/)) { after = substr(line, RSTART + RLENGTH); line = substr(line, 1, RSTART - 1) }
  declaration = declaration " " line
  if (after != "") add(after)
  if (declaration !~ /[;{]/) next
  name = declaration
  sub(/^[^(]*operator.*/, "", name)
  if (match(name, /\(/)) name = substr(name, 1, RSTART - 1)
  sub(/[;{=].*/, "", name); sub(/[ \t]+$/, "", name)
  sub(/.*[^A-Za-z0-9_\200-\377]/, "", name)
  keep(name)
  declaration = ""
}
END {
  print "// SPDX-License-Identifier: MIT" >to
  print "// Made by documentation.awk of the public headers." >to
  print "#include \"tavelor/c/documentation.hpp\"\n\n#include \"tavelor/c/documentation_tables.hpp\"\n\nnamespace tavelor::c {\n" >to
  print "const DocumentedClass kDocumentedClasses[] = {" >to
  for (i = 0; i < classes; i++) print "    {" quoted(names[i]) ", " quoted(bases[i]) ", " quoted(told[i]) "}," >to
  print "};\nconst std::size_t kDocumentedClassCount = " classes ";\n" >to
  print "const DocumentedMember kDocumentedMembers[] = {" >to
  for (i = 0; i < members; i++) print "    {" quoted(of[i]) ", " quoted(called[i]) ", " quoted(text[i]) "}," >to
  print "};\nconst std::size_t kDocumentedMemberCount = " members ";\n" >to
  print "}  // namespace tavelor::c" >to
}
