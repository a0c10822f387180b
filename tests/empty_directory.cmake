# Empties a directory, given as -DDIRECTORY=.
file(REMOVE_RECURSE "${DIRECTORY}")
file(MAKE_DIRECTORY "${DIRECTORY}")
