#!/usr/bin/env bash
# Makes an HTML page of a page of the documentation; links between pages lead to their HTML.
#
#   scripts/html-page.sh FROM.md TO.html
set -euo pipefail

title="$(sed -n 's/^# //p' "$1" | head -n 1)"
{
    cat <<HEAD
<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width">
<title>Corvane: $title</title>
<style>
:root { color-scheme: light dark; }
body { max-width: 50em; margin: 2em auto; padding: 0 1em; font-family: sans-serif; line-height: 1.5; }
img { max-width: 100%; }
table { border-collapse: collapse; }
td, th { border: 1px solid #8888; padding: 0.2em 0.6em; text-align: left; }
pre { padding: 0.8em; background: #8882; overflow-x: auto; }
</style>
</head>
<body>
HEAD
    # headings get the names that links between and within pages use
    cmark-gfm --extension table --to html "$1" |
        perl -pe 's{<h(\d)>(.*?)</h\1>}{my ($l, $t) = ($1, $2); my $i = lc $t; $i =~ s/<[^>]*>//g; $i =~ s/[^\w\- ]//g; $i =~ s/ /-/g; "<h$l id=\"$i\">$t</h$l>"}e; s{(href="[^":]*)\.md([#"])}{$1.html$2}g'
    printf '</body>\n</html>\n'
} >"$2"
