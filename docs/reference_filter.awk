# Shows the headers' plain comments to Doxygen. A comment belongs to what follows it without an empty line between, a
# whole group of declarations included; indented lines of a comment are a list.
BEGIN { print "/// \\file" } # or functions outside classes stay out
function said(line)
{
    sub(/^[ \t]*\/\/ ?/, "", line)
    if (line ~ /^  [A-Za-z][A-Za-z0-9, ]*  +[^ ]/) {
        sub(/^ +/, "", line)
        match(line, /  +/)
        return "- **" substr(line, 1, RSTART - 1) "**: " substr(line, RSTART + RLENGTH)
    }
    return line
}
/^[ \t]*\/\// { # a comment of its own
    if (!inComment)
        comment = ""
    inComment = 1
    comment = comment "/// " said($0) "\n"
    next
}
{
    if (inComment && $0 !~ /^[ \t]*$/)
        fresh = 1
    inComment = 0
}
/^#define CORVANE_C_INTERFACE/ { printf "%s", comment } # the one macro that hosts use
/^[ \t]*$/ || /^[ \t]*(#|\{|\}|static_assert|public:|private:)/ { # ends a group
    if ($0 ~ /^[ \t]*$/ || $0 ~ /^[ \t]*[{}]/)
        comment = ""
    continued = 0
    print
    next
}
{
    if (!continued && comment != "")
        printf "%s", comment
    # Declarations that go on in the next line are one.
    continued = ($0 !~ /[;{}][ \t]*(\/\/.*)?$/)
    sub(/ \/\/ /, " ///< ")
    print
}
