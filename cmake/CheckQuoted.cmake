# cmake -D TEXT=file -D DOCUMENT=file -P CheckQuoted.cmake
# fails unless the document holds the text, line for line.
file(READ ${TEXT} text)
file(READ ${DOCUMENT} document)
string(FIND "${document}" "${text}" place)
if(place EQUAL -1)
  message(FATAL_ERROR "${DOCUMENT} does not show ${TEXT} as it is")
endif()
