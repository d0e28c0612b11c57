# The @code blocks of the headers' comments, each as the body of a function, so that the compiler sees what readers copy.
# They see the headers that the variable includes has, separated by commas.
BEGIN {
    for (i = split(includes, headers, ","); i > 0; --i) print "#include <" headers[i] ">"
}
/^ *\/\/\/ @code$/ {
    printf "\nvoid ClassExample%d();\nvoid ClassExample%d() {\n#line %d \"%s\"\n", ++count, count, FNR + 1, FILENAME
    inside = 1
    next
}
/^ *\/\/\/ @endcode$/ {
    inside = 0
    print "}"
}
inside {
    sub(/^ *\/\/\/ ?/, "")
    print
}
