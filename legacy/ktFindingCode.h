#pragma once

/// @file
/// Everything that can be wrong with a document, lost or changed on its way to a drawing: one closed list of codes.

#include "legacy/ktAnnotationLegacyExport.h"

#include <cstdint>
#include <span>
#include <string>

namespace ktLegacy {

/// How much a finding matters.
enum class ktFindingSeverity : std::uint8_t {
    Note,     ///< good to know; nothing is lost
    Warning,  ///< something is shown or read in another way than the document says
    Error,    ///< something of the document is lost or refused
};

// clang-format off

/// The list. Each row: name, number, severity, sentence, when, what to do. The sentence is that of the loaders and the
/// migration, exactly, where they have one; where it goes on with what is in the document, it ends in "...". Numbers
/// are never used again and never change: add a row with a number of its own, in the part where it belongs, and run the
/// test findings.documentation, which says how docs/findings.md is made anew.
///
/// KT10xx a document as a whole, KT11xx binary documents, KT12xx variant documents, KT20xx the migration, KT21xx
/// metadata that a migration may not drop, KT30xx drawings, KT40xx files and the machine.
#define KT_LEGACY_FINDINGS(ROW) \
    ROW(Unreadable, 1001, Error, "cannot be read: ...", "The file could not be opened or read.", \
        "Check the path, its permissions and the disk; a retry may help.") \
    ROW(NoMemoryForDocument, 1002, Error, "there is not enough memory to hold the document", \
        "The machine had no memory left for the document.", "Free memory, or work on fewer documents at a time.") \
    ROW(EmptyFile, 1003, Error, "the file is empty (it ends at byte 0)", "The document has no bytes.", \
        "Get a whole copy of the document.") \
    ROW(NotADocument, 1004, Error, "neither a binary document (it does not begin with \"KTSTREAM\") nor valid JSON ...", \
        "The bytes begin like neither kind of document.", "Check that this is the file that was meant.") \
    ROW(InvalidJson, 1005, Error, "not valid JSON ...", "The text of a variant document breaks JSON's grammar.", \
        "Correct the text at the place named, or export the document again.") \
    ROW(SingleValue, 1006, Error, \
        "the document is a single value; a view map or a list of view maps is wanted", \
        "A variant document is a text, number or word instead of a map or list.", "Export the document again.") \
    ROW(JsonLimit, 1007, Error, "a limit of the reader was reached ...", \
        "A variant document is larger or nested deeper than the reader accepts.", "Split the document.") \
    ROW(MemoryLimit, 1008, Error, "the memory limit ... is too small for the document", \
        "Reading or drawing the document would take more memory than it may.", \
        "Raise --memory-limit, if the document is trusted.") \
    ROW(TimeLimit, 1009, Error, "the time limit was reached ...", \
        "The work on the document took longer than it may.", "Raise --time-limit, if the document is trusted.") \
    ROW(NulBytes, 1010, Error, "the file holds NUL bytes, so it is no text ...", \
        "Neither kind of document: text files hold no NUL bytes. A file of nothing but NULs was never written to the disk.", \
        "Get a whole copy of the document.") \
    ROW(Utf16Text, 1011, Error, "the text is in UTF-16; variant documents are in UTF-8", \
        "The document was saved in another encoding.", "Convert it, for example with iconv -f UTF-16 -t UTF-8.") \
    ROW(RawControlCharacter, 1012, Error, "a control character stands in a text as it is ...", \
        "JSON wants control characters inside of texts written as escapes.", \
        "Write the character as an escape, a line feed as \\n.") \
    ROW(NumberBeyondDouble, 1013, Error, "the number at ... is too large for any value and counts as infinite", \
        "A number of a variant document is beyond the double range.", \
        "Correct the number at the place named.") \
    ROW(DocumentChanged, 1014, Error, "the file changed while it was read", \
        "The file was shortened or written to while it was being worked on.", "Run again when the file is at rest.") \
    \
    ROW(StreamHeaderCut, 1101, Error, "the file ends inside its header ...", \
        "A binary document is shorter than its header.", "Get a whole copy of the document.") \
    ROW(RecordMissing, 1102, Error, "the file ends before record ...", \
        "There are fewer records than the header says.", "Get a whole copy of the document.") \
    ROW(RecordHeadCut, 1103, Error, "the file ends inside the head of record ...", \
        "The file is cut inside a record's head.", "Get a whole copy of the document.") \
    ROW(TypeNameTooLong, 1104, Error, "the type name of record ... is longer than the file", \
        "A length in a record's head is not possible; nothing can be read from there on.", \
        "Get a whole copy of the document.") \
    ROW(BodyTooLong, 1105, Error, "the body ... is longer than the file ...", \
        "A record says that it goes on beyond the end of the file. It is read as far as it goes.", \
        "Get a whole copy of the document.") \
    ROW(ZeroId, 1106, Warning, "the object has the id 0, which stands for no object; no link can lead to it", \
        "A record has an id that is not meant for objects. The object is read.", "Nothing, if its views are all there.") \
    ROW(TakenId, 1107, Warning, "the id ... is taken by an earlier object; links lead to that one", \
        "Two records have one id. Both objects are read.", "Check that both views are wanted.") \
    ROW(UnknownType, 1108, Error, "unknown type name ...; the object is skipped", \
        "A record is of a type that this reader does not know.", "Nothing, if the type holds no annotations.") \
    ROW(ObjectOverBudget, 1109, Error, \
        "the object claims more memory than the document's budget allows; it is lost. Raise the memory limit if the document is trusted", \
        "An object would take more memory than the document may.", "Raise --memory-limit, if the document is trusted.") \
    ROW(ObjectClaimsTooMuch, 1110, Error, "the object is damaged: it claims ..., but only ... are left; it is lost", \
        "A count or length in a record is not possible with the bytes that are there.", \
        "Get a whole copy of the document.") \
    ROW(ObjectOutOfMemory, 1111, Error, "there is not enough memory for the object; it is lost", \
        "The machine had no memory left for an object.", "Free memory, or work on fewer documents at a time.") \
    ROW(RecordTooShort, 1113, Error, "the record ends before its content does; the object keeps what could be read ...", \
        "A record has fewer bytes than its content needs.", "Get a whole copy of the document.") \
    ROW(UnsupportedVersion, 1114, Error, "views and annotations of this version are not supported ...", \
        "The document is older than 6.13 (views) or 6.15 (images).", \
        "Save the document in a newer version where it was made.") \
    ROW(WrongTypeIdentifier, 1115, Error, "the metadata object has the identifier of another type ...", \
        "A metadata record carries a type identifier that is not its own. Its views are listed all the same.", \
        "Check that all views are there.") \
    ROW(UnknownChildType, 1116, Error, "a nested annotation has an unknown type; the record is left there ...", \
        "A type code of a nested annotation is none of 0, 1 and 2.", "Get an undamaged copy of the document.") \
    ROW(UnknownValueKind, 1117, Error, "a metadata value has an unknown kind; the map ends before it ...", \
        "A kind code in a map of metadata is not known.", "Get an undamaged copy of the document.") \
    ROW(StreamNestedTooDeep, 1118, Error, \
        "annotations are nested deeper than 512 levels; what is deeper was not read ...", \
        "Annotations of a binary document are nested deeper than this reader goes.", "Nothing: no real document does so.") \
    ROW(MetadataNestedTooDeep, 1119, Error, \
        "metadata is nested deeper than 512 levels; the map ends before it ...", \
        "Maps or lists of a map of metadata are nested deeper than this reader goes.", \
        "Nothing: no real document does so.") \
    ROW(BytesLeftOver, 1120, Warning, "... left over at the end of the ... record; they are ignored", \
        "A record has more bytes than its content.", "Check the drawing; a newer version may have written more.") \
    ROW(BytesAfterLastRecord, 1121, Warning, "... after the last record; they are ignored", \
        "The file goes on behind its last record.", "Check that the file is the one that was meant.") \
    ROW(DeadLink, 1122, Error, "the link to object ... leads nowhere: the document has no such object", \
        "A metadata object lists a view that is not there.", "Get a whole copy of the document.") \
    ROW(LinkToUnknownType, 1123, Error, "the link to object ... leads to an object of an unknown type", \
        "A metadata object lists an object that could not be read.", "Nothing, if the type holds no annotations.") \
    ROW(LinkToWrongType, 1124, Error, "the link to object ... leads to a ..., which is not the type wanted there", \
        "A metadata object lists an object that is no view.", "Get an undamaged copy of the document.") \
    ROW(NotCompleted, 1125, Error, "the object could not be completed after its links were resolved", \
        "An object refused what its links lead to.", "Get an undamaged copy of the document.") \
    ROW(RecordDamaged, 1126, Error, "the record is damaged; the object keeps what could be read ...", \
        "A reader of a host's own object told of an error.", "Get an undamaged copy of the document.") \
    \
    ROW(InvalidVersion, 1201, Error, "invalid version ...", \
        "A view map has no version, or one older than 6.17. There is no view.", \
        "Save the document in a newer version where it was made.") \
    ROW(InvalidOrigin, 1202, Warning, "invalid 'origin' field", "The origin of a view is no list of three.", \
        "Correct the value; the default is used.") \
    ROW(InvalidNormal, 1203, Warning, "invalid 'normal' field", "The normal of a view is no list of three.", \
        "Correct the value; the default is used.") \
    ROW(InvalidAxis, 1204, Warning, "invalid 'axis' field", "The axis of a view is no list of three.", \
        "Correct the value; the default is used.") \
    ROW(InvalidMetadata, 1205, Warning, "invalid 'metadata' field", \
        "The metadata of a view from 6.27 on is missing or no map.", "Nothing, if the view is not meant to have any.") \
    ROW(MissingAnnotations, 1206, Error, "missing 'annotations' field", \
        "A view map from 6.22 on has no list of annotations. There is no view.", "Export the document again.") \
    ROW(InvalidAnnotations, 1207, Error, "invalid 'annotations' field", \
        "The annotations of a view are no list. There is no view.", "Export the document again.") \
    ROW(InvalidAnnotationsContent, 1208, Error, "invalid 'annotations' field content", \
        "An entry of a list of annotations is no map. (The list of texts before 6.22 says so in these words, too.)", \
        "Correct the entry; it is left out.") \
    ROW(MissingTextAnnotations, 1209, Error, "missing 'textannotations' field", \
        "A view map before 6.22 has no list of texts. There is no view.", "Export the document again.") \
    ROW(InvalidTextAnnotations, 1210, Error, "invalid 'textannotations' field", \
        "The texts of a view are no list. There is no view.", "Export the document again.") \
    ROW(MissingRasterAnnotations, 1211, Error, "missing 'rasterannotations' field", \
        "A view map before 6.22 has no list of images. There is no view.", "Export the document again.") \
    ROW(InvalidRasterAnnotations, 1212, Error, "invalid 'rasterannotations' field", \
        "The images of a view are no list. There is no view.", "Export the document again.") \
    ROW(InvalidRasterAnnotationsContent, 1213, Error, "invalid 'rasterannotations' field content", \
        "An entry of a list of images is no map.", "Correct the entry; it is left out.") \
    ROW(InvalidAnnotationType, 1214, Error, "invalid annotation type", \
        "The type of an annotation is neither \"text\" nor \"raster\".", "Correct the word; the annotation is left out.") \
    ROW(InvalidInterfaceVersion, 1215, Error, "invalid version for annotation interface", \
        "An annotation map is older than 6.17.", "Save the document in a newer version where it was made.") \
    ROW(InvalidTextVersion, 1216, Error, "invalid version for text annotation", \
        "A text or image map is older than 6.17. (Both kinds share the sentence.)", \
        "Save the document in a newer version where it was made.") \
    ROW(InvalidColor, 1217, Warning, "invalid 'color' field", \
        "A colour is not six hexadecimal digits.", "Correct the value; white is used.") \
    ROW(InvalidPosition, 1218, Error, "invalid 'position' field", \
        "A position is no list of three numbers.", "Correct the value; the annotation is left out.") \
    ROW(InvalidLeaders, 1219, Error, "invalid 'leaders' field", "The leaders of an annotation are no list.", \
        "Correct the value; there are no leaders.") \
    ROW(InvalidLeadersContent, 1220, Error, "invalid 'leaders' field content", \
        "A leader is of the wrong form.", "Correct the entry; it is left out.") \
    ROW(InvalidMeasures, 1221, Error, "invalid 'measures' field", "The measure leaders of an annotation are no list.", \
        "Correct the value; there are no measure leaders.") \
    ROW(InvalidMeasuresContent, 1222, Error, "invalid 'measures' field content", \
        "A measure leader is of the wrong form.", "Correct the entry; it is left out.") \
    ROW(InvalidDefaultTextProperties, 1223, Warning, "invalid 'defaulttextprop' field", \
        "The default properties of a text are no map.", "Correct the value; Arial of one em is used.") \
    ROW(InvalidLine, 1224, Error, "invalid line", "A line of a text is no list.", "Correct the line; it is left out.") \
    ROW(InvalidSegment, 1225, Error, "invalid segment", "A segment of a line is no map.", \
        "Correct the segment; it is left out.") \
    ROW(InvalidSize, 1226, Error, "invalid 'sizeem' field", "The size of an image is no list.", \
        "Correct the value; the image is left out.") \
    ROW(InvalidSizeLength, 1227, Error, "invalid 'sizeem' length", "The size of an image has not two numbers.", \
        "Correct the value; the image is left out.") \
    ROW(AnnotationsLost, 1230, Error, "... annotations of view '...' could not be read", \
        "A view holds fewer annotations than its lists have entries.", "See the findings of that view.") \
    ROW(NestedAnnotationsLost, 1231, Error, "... nested annotations of view '...' could not be read", \
        "Annotations of a view hold fewer nested ones than their lists have entries.", "See the findings of that view.") \
    ROW(NestedEntryIsNoMap, 1232, Error, \
        "an entry of a list of nested annotations is no map; the annotation that holds it is left out", \
        "An entry of a list of nested annotations is no map.", "Correct the entry.") \
    ROW(VariantNestedTooDeep, 1233, Error, \
        "annotations are nested deeper than 512 levels; what is deeper was not read", \
        "Annotations of a variant document are nested deeper than this reader goes.", \
        "Nothing: no real document does so.") \
    ROW(TextCut, 1240, Error, "a text of ... bytes was cut to 65535", \
        "A segment of a text is longer than the model holds.", "Split the segment where the document was made.") \
    \
    ROW(AnnotationNotMigrated, 2001, Error, "Fail to migrate annotation '...' of view '...'", \
        "An annotation could not be migrated; the lines before say why. Its view is refused.", \
        "--accept failed-annotations draws the view without it.") \
    ROW(LeadersNotMigrated, 2002, Error, "Fail to migrate leaders of annotation '...' of view '...'", \
        "The leaders of an annotation could not be migrated.", "--accept failed-annotations draws the view without it.") \
    ROW(MeasureLeadersNotMigrated, 2003, Error, "Fail to migrate measure leaders of annotation '...' of view '...'", \
        "The measure leaders of an annotation could not be migrated.", \
        "--accept failed-annotations draws the view without it.") \
    ROW(SubAnnotationNotMigrated, 2004, Error, "Fail to migrate sub annotation of '...'", \
        "A nested annotation could not be migrated, so that the one that holds it could not either.", \
        "--accept failed-annotations draws the view without the annotation.") \
    ROW(EmptyFrame, 2005, Error, "Empty frame", \
        "An annotation has nothing to draw: no text with an extent, or an image without size.", \
        "--accept failed-annotations draws the view without it.") \
    ROW(NoRasterCallback, 2006, Error, "No raster callback", \
        "There is an image, and nobody to give pictures.", "Give the drawing a source of pictures.") \
    ROW(RasterMissing, 2007, Error, "Fail to retrieve raster '...'", "The picture of an image was not found.", \
        "--raster-dir names the folder of the pictures; --accept missing-pictures draws a crossed box in its place.") \
    ROW(UnexpectedLeaders, 2008, Error, "Unexpected leader segments or shapes", \
        "More than one nested annotation has leaders, which the new model has no place for.", \
        "--accept failed-annotations draws the view without the annotation.") \
    ROW(SubAnnotationLeadersNotMigrated, 2009, Error, "Fail to migrate sub annot leaders", \
        "The leaders of a nested annotation could not be migrated.", \
        "--accept failed-annotations draws the view without the annotation.") \
    ROW(SubAnnotationMeasureLeadersNotMigrated, 2010, Error, "Fail to migrate sub annot measure leaders", \
        "The measure leaders of a nested annotation could not be migrated.", \
        "--accept failed-annotations draws the view without the annotation.") \
    ROW(NoPerpendicularLine, 2011, Error, "Fail to compute perpendicular line", \
        "A measure leader has no direction, or its lines do not meet.", \
        "--accept failed-annotations draws the view without the annotation.") \
    ROW(UnknownLeaderHead, 2012, Warning, "Unhandled leader head", \
        "The head of a leader has a code beyond the known ones. The leader is drawn without a head.", \
        "Look at the drawing.") \
    ROW(NoReason, 2013, Error, "the migration gave no reason", \
        "A view was refused without a word: an annotation has no kind, or an anchor that is not known.", \
        "--accept failed-annotations draws the view without the annotation.") \
    ROW(NestedLeaders, 2020, Warning, "... leaders of nested annotations have no place in the new model", \
        "Leaders of annotations that are nested twice or deeper are not drawn.", "Look at the drawing.") \
    ROW(ViewMetadata, 2101, Error, "Found metadata in annotation view", \
        "A view carries metadata, which a drawing has no place for.", "--accept view-metadata drops it.") \
    ROW(OtherMetadata, 2102, Error, "Found unexpected metadata ... in annotation", \
        "An annotation carries metadata under a key of its own.", "--accept other-metadata drops it.") \
    ROW(KnownMetadata, 2103, Error, "Found CT metadata ...in annotation", \
        "An annotation carries metadata under a well-known key.", "--accept known-metadata drops it.") \
    \
    ROW(ItemNotFinite, 3001, Error, "... was left out: a number is not finite", \
        "A part of the drawing stands nowhere: one of its numbers is infinite or no number.", "Correct the value.") \
    ROW(ItemTooLarge, 3002, Error, "... was left out: it is longer than 10,000,000 bytes", \
        "A part of the drawing is larger than readers of drawings accept.", "Split it.") \
    ROW(PictureTooLarge, 3003, Error, "an image was left out: ...", \
        "A picture is larger than the 7,400,000 bytes that readers of drawings accept.", "Make the picture smaller.") \
    ROW(PictureUnknown, 3004, Error, "an image was left out: ...", \
        "The data of an image is no PNG, JPEG, GIF or WebP picture.", "Convert the picture.") \
    ROW(PictureDamaged, 3005, Warning, "the picture of an image is cut or damaged ...", \
        "The data of a picture breaks off, or its head says what cannot be.", "Get a whole copy of the picture.") \
    ROW(ColorUnknown, 3006, Warning, "a colour was left out: it is neither a word nor #RRGGBB", \
        "A colour of the migrated model cannot be written.", "Look at the drawing.") \
    ROW(GlyphMissing, 3007, Warning, "no font has glyphs for ...", \
        "No font of this machine has the characters; boxes are drawn in their place.", \
        "Install a font for the script, for example fonts-noto-core, fonts-noto-cjk or fonts-symbola.") \
    ROW(CharactersReplaced, 3008, Warning, "characters were replaced ...", \
        "A text holds what XML cannot hold, or is no UTF-8.", "Correct the text.") \
    ROW(TextUnreadable, 3009, Warning, "text cannot be told from its fill ...", \
        "The colour of a text is so close to the frame's that it cannot be read.", "Look at the drawing.") \
    ROW(PageAbsurd, 3010, Warning, "a coordinate makes the page ... wide ...", \
        "A point lies so far away that nothing can be seen in the drawing.", "Check the coordinate.") \
    ROW(FontReplaced, 3011, Note, "the font '...' is replaced by '...'", \
        "A font family is not installed.", "Install the font, if the look matters.") \
    ROW(OutlinesMissing, 3012, Warning, "a text was left as text: ...", \
        "A text has no outlines to draw.", "Install a font with outlines for it.") \
    ROW(AnnotationLeftOut, 3020, Warning, "the drawing leaves this annotation out ...", \
        "An annotation that could not be migrated was left out, as --accept failed-annotations says.", \
        "See the other findings of the annotation.") \
    ROW(PictureReplaced, 3021, Warning, "a crossed box is drawn in the place of the picture '...'", \
        "A picture was not found and was replaced, as --accept missing-pictures says.", "Find the picture.") \
    ROW(DrawingIncomplete, 3099, Warning, "...", "Something else was left out of a drawing or replaced.", \
        "Look at the drawing.") \
    \
    ROW(OutputNotWritten, 4001, Error, "...", "A drawing, dump or report could not be written.", \
        "Check the folder, its permissions and the disk; a retry may help.") \
    ROW(OutputExists, 4002, Error, "drawings of it are there already ...", \
        "There are drawings of this document, and neither --force nor --skip-existing was given.", \
        "--force replaces them, --skip-existing keeps them and makes the others.") \
    ROW(OutputOfAnotherSource, 4003, Error, "the drawing is one of another document ...", \
        "A file of that name was drawn from another source.", "Choose another folder, or --base.") \
    ROW(FontsUnavailable, 4004, Error, "fonts cannot be read ...", \
        "No font could be opened, or the font configuration could not be read.", \
        "Install fonts, for example fonts-liberation.") \
    ROW(PictureUnreadable, 4005, Error, "the picture ... cannot be read ...", \
        "A picture is there and could not be read.", "Check its permissions.") \
    ROW(WorkerDied, 4006, Error, "the worker process died ...", \
        "The process that worked on the document ended by a signal.", "Report it, with the document.") \
    ROW(OutputStale, 4008, Warning, "... is kept, but the document gives something else now; --force replaces it", \
        "A drawing of an earlier run was kept, and is not what the document gives now.", "--force replaces it.") \
    ROW(OutputOrphaned, 4009, Warning, "no view of it is drawn to ... any more, which an earlier run made ...", \
        "A view was renamed or removed, and its old drawing is still there.", "Delete the drawing, or keep it elsewhere.") \
    ROW(InternalError, 4099, Error, "internal error, please report it: ...", "A fault of this program.", \
        "Report it, with the document and the output of ktannot version.")

// clang-format on

/// What is wrong. The value is the number of the code: InvalidColor is KT1217.
enum class ktFindingCode : std::uint16_t {
#define KT_FINDING_ENUMERATOR(NAME, NUMBER, SEVERITY, SENTENCE, WHEN, WHAT_TO_DO) NAME = (NUMBER),
    KT_LEGACY_FINDINGS(KT_FINDING_ENUMERATOR)
#undef KT_FINDING_ENUMERATOR
};

/// What is known about a code.
struct ktFindingKind {
    ktFindingCode mCode;
    ktFindingSeverity mSeverity;
    const char* mName;      ///< of the enumerator
    const char* mSentence;  ///< fixed, or with "..." where it tells more
    const char* mWhen;      ///< when it is told, a sentence
    const char* mWhatToDo;  ///< a sentence
};

/// All codes, ascending.
KT_ANNOTATION_LEGACY_API std::span<const ktFindingKind> getFindingKinds();
/// What is known about one code.
KT_ANNOTATION_LEGACY_API const ktFindingKind& getFindingKind(ktFindingCode code);
/// Whether it is one of the messages that the loaders of maps append to their caller's list.
KT_ANNOTATION_LEGACY_API bool isLoaderMessage(ktFindingCode code);
/// "KT1217".
KT_ANNOTATION_LEGACY_API std::string getFindingCodeText(ktFindingCode code);

}  // namespace ktLegacy
