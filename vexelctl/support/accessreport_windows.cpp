#include "vexelctl/support/accessreport.h"

void ReportAccess(SupportReport& /*report*/, const QString& /*directory*/, const QString& /*traceFile*/)
{
}
