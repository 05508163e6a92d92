# Doxygen reads only comments with its own marks; this library documents its API in plain
# line comments above each declaration. This filter hands Doxygen each header with the marks
# added and every line in its place (warnings then point at the right line):
#   - the comment block right under "#pragma once" describes the file;
#   - any other block of whole-line comments describes what follows it;
#   - a comment after a declaration on its line (an enumeration member) describes that;
#   - banners ("// --- Properties ---") only order the header and are dropped.
NR == 1 && /^#pragma once/ { print "//! \\file"; head = 1; next }
/^[ \t]*\/\/ ---.*---[ \t]*$/ { print ""; head = 0; next }
/^[ \t]*\/\// {
  line = $0
  sub(/\/\//, head ? "//!" : "///", line)
  print line
  next
}
{
  head = 0
  line = $0
  # A trailing comment after code, but not one inside a string.
  if (line !~ /"/ && match(line, /[;,{][ \t]+\/\/ /)) {
    at = index(substr(line, RSTART), "//") + RSTART - 1
    line = substr(line, 1, at - 1) "///<" substr(line, at + 2)
  }
  print line
}
