// Questions: what a workflow can't decide alone. Asked by callback, never by waiting: a screen answers later,
// a session without one answers at once. A question that goes away unanswered means "cancel".
#pragma once

#include "app/export/export_run.h"
#include "app/project/folder_scan.h"
#include "core/profiles/catalogue/preset_library.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace tamlo {

/// Takes one choice, once; nothing when it is destroyed before.
template <typename Choice>
class Answer {
public:
    using Take = std::function<void(std::optional<Choice>)>;

    explicit Answer(Take take) : take_(std::make_unique<Take>(std::move(take))) {}
    Answer(Answer&&) noexcept = default;
    Answer& operator=(Answer&&) = delete;
    ~Answer() { give(std::nullopt); }

    void operator()(Choice choice) { give(std::move(choice)); }

private:
    void give(std::optional<Choice> choice)
    {
        if (const auto take = std::move(take_)) (*take)(std::move(choice));
    }

    std::unique_ptr<Take> take_;
};

/// What a screen shows of a question.
struct QuestionText {
    std::string title;
    std::string note;
};

enum class ApplyTo { onlyEmpty, every };

/// What a screen shows of a question whose answer is a name.
struct NameQuestion {
    QuestionText text;
    std::string placeholder; ///< shown in the empty field
    std::string name;        ///< what stands in the field at first
};

struct Questions {
    virtual ~Questions() = default;

    /// What to take of shots that lie there as RAW and as a finished picture.
    virtual void pairs(const QuestionText& text, Answer<FolderScan::PairChoice> answer) = 0;
    /// Settings of one frame to all, some of which have their own.
    virtual void applyToAll(const QuestionText& text, Answer<ApplyTo> answer) = 0;
    /// Whether picked frames are to be removed.
    virtual void remove(const QuestionText& text, Answer<bool> answer) = 0;
    /// Whether a frame is to be linked to a file that is another picture.
    virtual void otherFile(const QuestionText& text, Answer<bool> answer) = 0;
    /// Whether further lost files, found beside one that was just linked, are to be linked too.
    virtual void linkNearby(const QuestionText& text, Answer<bool> answer) = 0;
    /// What to do where an exported file would take a name that stands. mayReplace: a photograph of the roll
    /// is never replaced.
    virtual void exportExists(const QuestionText& text, bool mayReplace, Answer<ExportClashReply> answer) = 0;

    // Of the catalogue. Whoever shows no catalogue need not answer: each is cancelled then.

    /// What a preset is to be called.
    virtual void presetName(const NameQuestion&, Answer<std::string>) {}
    /// Whether a preset goes: a user's own to the trash, one of the program's out of the list.
    virtual void deletePreset(const QuestionText&, Answer<bool>) {}
    /// Whether a user's profile goes to the trash.
    virtual void deleteProfile(const QuestionText&, Answer<bool>) {}
    /// What to do with a preset or a profile whose id is taken. mayReplace: the one that is there is the
    /// user's.
    virtual void idTaken(const QuestionText&, bool /*mayReplace*/, Answer<PresetConflict>) {}
};

/// Answers at once with what was decided beforehand, and cancels what was not.
struct HeadlessQuestions : Questions {
    std::optional<FolderScan::PairChoice> pairChoice;
    std::optional<ApplyTo> applyChoice;
    std::optional<bool> removePicked;
    std::optional<bool> linkOther;
    std::optional<ExportClashReply> exportReply;
    std::optional<std::string> nameChoice;
    std::optional<bool> deleteFromCatalogue;
    std::optional<PresetConflict> conflictChoice;
    bool linkWhatIsNearby = false; ///< an offer: what is not wanted was not left undecided
    std::size_t cancelled = 0;     ///< questions that nothing had decided

    void pairs(const QuestionText&, Answer<FolderScan::PairChoice> answer) override
    {
        settle(pairChoice, answer);
    }
    void applyToAll(const QuestionText&, Answer<ApplyTo> answer) override { settle(applyChoice, answer); }
    void remove(const QuestionText&, Answer<bool> answer) override { settle(removePicked, answer); }
    void otherFile(const QuestionText&, Answer<bool> answer) override { settle(linkOther, answer); }
    void linkNearby(const QuestionText&, Answer<bool> answer) override { answer(linkWhatIsNearby); }
    void exportExists(const QuestionText&, bool, Answer<ExportClashReply> answer) override
    {
        settle(exportReply, answer);
    }
    void presetName(const NameQuestion&, Answer<std::string> answer) override { settle(nameChoice, answer); }
    void deletePreset(const QuestionText&, Answer<bool> answer) override
    {
        settle(deleteFromCatalogue, answer);
    }
    void deleteProfile(const QuestionText&, Answer<bool> answer) override
    {
        settle(deleteFromCatalogue, answer);
    }
    void idTaken(const QuestionText&, bool, Answer<PresetConflict> answer) override
    {
        settle(conflictChoice, answer);
    }

private:
    template <typename Choice>
    void settle(const std::optional<Choice>& decided, Answer<Choice>& answer)
    {
        if (decided)
            answer(*decided);
        else
            ++cancelled;
    }
};

} // namespace tamlo
