# SPDX-License-Identifier: MIT
# What Doxygen reads in the place of a public header. Two habits of our headers are told to it:
# - what every class has in the same form needs no comment of its own;
# - a comment "// ---- Title. More." heads the members below it, as far as the next one or the end
#   of the public part. It becomes a group of that name, with the rest as its description.
# Lines keep their numbers, so that a warning names the right one.
BEGIN { kComponent = "The component table: the members by name, in slot order." }

function closed() {
  if (!open) return ""
  open = 0
  return "/** @} */ "
}

# Writes the heading that was collected over `lines` lines.
function write_heading(    cut, title, more, i) {
  gsub(/ *\([a-z_]+\.cpp\)/, "", heading)
  cut = match(heading, /[.:;]( |$)/)
  title = cut ? substr(heading, 1, cut - 1) : heading
  more = cut ? substr(heading, cut + 1) : ""
  gsub(/^ +| +$/, "", more)
  printf "%s/** @name %s\n%s */ /** @{ */\n", closed(), title,
         toupper(substr(more, 1, 1)) substr(more, 2)
  for (i = 3; i <= lines; i++) print ""
  open = 1
  heading = ""
}

heading != "" && /^  \/\/( |$)/ {
  sub(/^  \/\/ ?/, "")
  # An empty line ends the title.
  heading = heading ($0 == "" && heading !~ /[.:;]$/ ? "." : " " $0)
  lines++
  next
}
heading != "" && /^$/ { lines++; write_heading(); next }
heading != "" { write_heading() }
/^  \/\/ ---- / { heading = substr($0, 11); sub(/-+$/, "", heading); lines = 1; next }
/^};/ || /^ (protected|private):/ { printf "%s", closed() }

/^  static const Component& component\(\);/ { printf "/** %s */", kComponent }
/^  static constexpr std::string_view kTypeName / { printf "/** What typeName() gives. */" }
/^  std::string typeName\(\) const override / { printf "/** The name of the class. */" }
/^  [A-Za-z]+\(\);/ { printf "/** Without rows yet. */" }
/^  ~[A-Za-z]+\(\)( override)?;/ { printf "/** Lets go of what it holds. */" }
{ print }
