// Status codes of the database.
#pragma once

namespace Acad {
enum ErrorStatus {
    eOk = 0,
    eNotImplementedYet,
    eInvalidInput,
    eNullObjectId,
    eWasErased,
    eWasOpenForRead,
    eWasOpenForWrite,
    eNotOpenForWrite,
    eKeyNotFound,
    eDuplicateKey,
    eInvalidKey,
    eNullExtents,
    eInvalidExtents,
    eDegenerateGeometry,
    eWrongObjectType,
    eNotInDatabase,
    eNoDatabase,
    eInvalidIndex,
    eFileNotFound,
    eFileAccessErr,
    eBadDxfFile,
    eOutOfMemory,
    eUserBreak,
    eNotApplicable
};
/// The name of a status for messages, without the leading "e".
const char* errorText(ErrorStatus status);
} // namespace Acad
