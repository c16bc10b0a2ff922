// What the database asks of the program that holds it: files, names, progress.
#pragma once

#include "host/db/errors.h"

#include <string>

class AcDbDatabase;

/// Shows how far something long is. This one shows nothing; a program overrides it.
class AcDbHostApplicationProgressMeter {
public:
    virtual ~AcDbHostApplicationProgressMeter() = default;
    virtual void start(const std::string& /*text*/) {}
    /// How many calls of meterProgress there will be.
    virtual void setLimit(int limit) { limit_ = limit; }
    virtual void meterProgress() { ++position_; }
    virtual void stop() { position_ = 0; }
    int limit() const { return limit_; }
    int position() const { return position_; }

private:
    int limit_ = 0, position_ = 0;
};

/// The services. A program or module derives from it and sets its own.
class AcDbHostApplicationServices {
public:
    virtual ~AcDbHostApplicationServices();

    /// The drawing that new calls mean: the same as acdbCurDwg.
    AcDbDatabase* workingDatabase() const;
    void setWorkingDatabase(AcDbDatabase* database);
    /// The full name of a file that a drawing names: the name as it stands when it is absolute,
    /// else below the drawing's folder, else in it by its last part (drawings keep the names of
    /// other people's folders). Both separators count. eFileNotFound leaves `found` alone.
    virtual Acad::ErrorStatus findFile(std::string& found, const std::string& name,
                                       const AcDbDatabase* database = nullptr) const;
    /// The program's name for messages and files.
    virtual std::string product() const;
    /// Language and country of the user as "en_US", from the environment; "en_US" when it says
    /// nothing.
    virtual std::string userLocale() const;
    /// The meter for what goes on now, never null.
    virtual AcDbHostApplicationProgressMeter* newProgressMeter();

private:
    AcDbHostApplicationProgressMeter silent_;
};

/// The services in force, never null.
AcDbHostApplicationServices* acdbHostApplicationServices();
/// Sets them; null brings the host's own back. The setter takes them away before they end.
void acdbSetHostApplicationServices(AcDbHostApplicationServices* services);
