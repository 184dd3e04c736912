#include "editingoperation.h"

#include "model/errortable.h"
#include "model/runtimeerror.h"
#include "undoerrorreport.h"

#include <QString>

#include <new>
#include <stdexcept>

namespace {

// Failures that do not come from the menu model are reported under the program's own name.
QString programSource()
{
    return QStringLiteral("KELVEditor");
}

} // namespace

bool runCatchingErrors(const std::function<void()>& operation, const std::function<void(const RunTimeError&)>& onError)
{
    try {
        operation();
        return true;
    } catch (const RunTimeError& error) {
        onError(error);
    } catch (const std::bad_alloc&) {
        onError(RunTimeError(ErrorNumber::OutOfMemory, programSource()));
    } catch (const std::out_of_range&) {
        onError(RunTimeError(ErrorNumber::SubscriptOutOfRange, programSource()));
    } catch (const std::overflow_error&) {
        onError(RunTimeError(ErrorNumber::Overflow, programSource()));
    } catch (const std::exception&) {
        onError(RunTimeError(ErrorNumber::InvalidProcedureCall, programSource()));
    }
    return false;
}

bool runEditingOperation(UndoErrorReport& report, const std::function<void()>& operation)
{
    return runCatchingErrors(operation, [&report](const RunTimeError& error) { report.show(error); });
}
