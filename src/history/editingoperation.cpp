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

bool runEditingOperation(UndoErrorReport& report, const std::function<void()>& operation)
{
    try {
        operation();
        return true;
    } catch (const RunTimeError& error) {
        report.show(error);
    } catch (const std::bad_alloc&) {
        report.show(RunTimeError(ErrorNumber::OutOfMemory, programSource()));
    } catch (const std::out_of_range&) {
        report.show(RunTimeError(ErrorNumber::SubscriptOutOfRange, programSource()));
    } catch (const std::overflow_error&) {
        report.show(RunTimeError(ErrorNumber::Overflow, programSource()));
    } catch (const std::exception&) {
        report.show(RunTimeError(ErrorNumber::InvalidProcedureCall, programSource()));
    }
    return false;
}
