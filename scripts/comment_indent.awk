# Prints each comment line that is indented although it continues a text. The formatter leaves indented lines as they
# are, so the text breaks off in the middle of the line before.
FNR == 1 { isText = isCode = 0 }
!match($0, /^ *\/\/\/? /) { isText = 0; next }
{
    rest = substr($0, RLENGTH + 1)
    if (rest ~ /^@code/) isCode = 1
    if (rest ~ /^@endcode/) isCode = 0
    if (rest !~ /^ /) isText = !isCode && rest !~ /^(-|@code|@endcode)/ && rest !~ /:$/
    else if (isText) { print FILENAME ":" FNR ": continues a text: indent it by one blank"; isBad = 1 }
}
END { exit isBad }
