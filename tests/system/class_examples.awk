# The @code blocks of the headers' comments, each as the body of a function, so that the compiler sees what readers copy.
BEGIN {
    print "#include <qellib10/qellib10.h>\n#include <qellib10/store.h>\n"
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
