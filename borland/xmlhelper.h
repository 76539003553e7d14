// A small, tolerant reader of tags and text, and the escapes that go with it: for the value files.
#pragma once

#include <climits>

#include "borland/vtstring.h"
#include "borland/vtstringlist.h"

enum TagType {
    openTag = 0,
    closeTag = 1,
    simpleTag = 2,  // empty element: '/' before its '>'
};

// States of the tag reader.
enum GtState {
    gtNone = 0,     // before '<'
    gtInTag = 1,    // in the tag's name
    gtInParam = 2,  // in an attribute's name
    gtInEqual = 3,  // after the blanks that follow an attribute's name
    gtInValue = 4,  // in an attribute's value
    gtInClose = 5,  // after '/', only '>' may follow
};

// One tag as read. The object can be used again for the next one.
class VtXmlTag {
  public:
    VeltoString tagName;
    TagType tagType = openTag;
    // One entry an attribute, in the order of the text: its name, and as object a VeltoString with
    // its value, or none when the value is empty. Null until the first attribute. The tag owns the
    // list and the values.
    VeltoStringList* paramList = nullptr;
    // Attributes stored at most; more are skipped. A caller that expects only a few sets it, so
    // that a malformed tag of many megabytes costs no memory.
    int maximo = INT_MAX;

    VtXmlTag() = default;
    VtXmlTag(const VtXmlTag&) = delete;
    VtXmlTag& operator=(const VtXmlTag&) = delete;
    ~VtXmlTag();

    // As new, but the attribute list is kept, empty.
    void reset();

    // How many attributes were read.
    int atributos() const { return paramList ? paramList->Count : 0; }
    // The value of attribute `i`, which must exist; empty when it has none.
    VeltoString valor(int i) const;
};

// Reads one tag from `text` at `pos`, an index from 0 that moves behind what was read. Blanks in
// front of it are skipped. False when no tag was completed.
//
// Names end at blanks, values may be bare or quoted, and only quoted ones know entities. A blank
// between the last quoted value and '>' or '/' is read as one more attribute, with an empty name.
bool getVtXmlTagFromString(VeltoString& text, int& pos, VtXmlTag* tag);

// Reads characters into `data` up to the next '<', where `pos` stays. Entities (&quot; &amp; &lt;
// &gt; in any letter case) become their characters, an unknown one is kept as it stands. False when
// the text ends first; `data` then holds what there was.
bool getVtXmlDataFromString(VeltoString& text, int& pos, VeltoString& data);

// Replaces each & " < > by its entity, in place.
void escapeVtXmlString(VeltoString& s);
