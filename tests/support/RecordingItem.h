#pragma once

#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "browsersweep/cleanable/CleanableData.h"

namespace browsersweep::tests {

/** An item that writes down what is asked of it, and may fail. */
class RecordingItem : public CleanableData {
public:
    using Record = std::shared_ptr<std::vector<std::string>>;

    RecordingItem(std::string name, CleanableDataSize size, Record record)
        : name_(std::move(name)), size_(size), record_(std::move(record)) {}

    RecordingItem& failing() {
        fails_ = true;
        return *this;
    }
    RecordingItem& requiringClosedBrowser() {
        requiresClosed_ = true;
        return *this;
    }
    RecordingItem& leaving(CleanableDataSize size) {
        sizeAfterCleaning_ = size;
        return *this;
    }

    bool requiresClosedBrowserToClean() const noexcept override {
        record_->push_back(name_ + " asked");
        return requiresClosed_;
    }

    using CleanableData::clean;
    using CleanableData::size;
    CleanableDataSize size(CleanableDataFilters filters) const override {
        record_->push_back(name_ + " sized with " + std::to_string(filters.size()));
        throwIfFailing();
        return *isCleaned_ ? sizeAfterCleaning_ : size_;
    }
    void clean(CleanableDataFilters filters) const override {
        record_->push_back(name_ + " cleaned with " + std::to_string(filters.size()));
        throwIfFailing();
        *isCleaned_ = true;
    }

private:
    void throwIfFailing() const {
        if (fails_) {
            throw std::runtime_error(name_ + " failed");
        }
    }

    std::string name_;
    CleanableDataSize size_;
    CleanableDataSize sizeAfterCleaning_;
    Record record_;
    std::shared_ptr<bool> isCleaned_ = std::make_shared<bool>(false);
    bool fails_ = false;
    bool requiresClosed_ = false;
};

/** The same with forms of its own for ignoring errors; what they are asked is written down too. */
class OwnIgnoringItem : public RecordingItem {
public:
    OwnIgnoringItem(const std::string& name, const Record& record)
        : RecordingItem(name, {1, 10}, record), name_(name), record_(record) {}

    using RecordingItem::cleanIgnoringErrors;
    using RecordingItem::sizeIgnoringErrors;
    CleanableDataSize sizeIgnoringErrors(CleanableDataFilters filters) const noexcept override {
        note("sized", filters);
        return {7, 70};
    }
    void cleanIgnoringErrors(CleanableDataFilters filters) const noexcept override {
        note("cleaned", filters);
    }

private:
    void note(const std::string& what, CleanableDataFilters filters) const {
        record_->push_back(name_ + " " + what + " ignoring errors with " +
                           std::to_string(filters.size()));
    }

    std::string name_;
    Record record_;
};

}  // namespace browsersweep::tests
