#pragma once

#include "zelvo/CommandLine/Arguments.hpp"
#include "zelvo/Execution/WorkerExchange.hpp"
#include "zelvo/Output/Result.hpp"

// The commands. Each prints its result or its errors and returns the exit status.
namespace zelvo {

/// `zelvo inspect`: describes each workbook that can be read and reports an error for each other one.
ExitStatus inspect(const Hosts& hosts, const InspectArguments& arguments);

/// `zelvo extract`: prints a sheet or a range. If the selection is refused, also prints what can be selected.
ExitStatus extract(const Hosts& hosts, const ExtractArguments& arguments);

/// `zelvo create`: writes a validated document that shows a table to a file or standard output.
ExitStatus create(const Hosts& hosts, const CreateArguments& arguments);

/// `zelvo validate`: verifies that a document is one that `create` wrote, and which table it shows.
ExitStatus validate(const Hosts& hosts, const ValidateArguments& arguments);

/// `zelvo clean`: writes a new workbook that holds only the cells, and prints what was left out.
ExitStatus clean(const Hosts& hosts, const CleanArguments& arguments);

/// `zelvo research check`: validates a dataset and prints it in its canonical form, with its resolved cells
/// and calculations.
ExitStatus researchCheck(const ResearchCheckArguments& arguments);

/// `zelvo research workbook`: writes a dataset as a workbook.
ExitStatus researchWorkbook(const ResearchWorkbookArguments& arguments);

/// `zelvo research report`: writes the first table of a report without a dataset as a workbook.
ExitStatus researchReport(const ResearchReportArguments& arguments);

/// `zelvo research presentation`: validates a deck with the host's datasets, and prints it in its canonical
/// form or writes it as a presentation.
ExitStatus researchPresentation(const ResearchPresentationArguments& arguments);

/// `zelvo doctor`: checks that processes can be confined here and that worker and cleaner answer, or that a
/// request is well formed. Prints nothing of the request's document.
ExitStatus doctor(const Hosts& hosts, const DoctorArguments& arguments);

}  // namespace zelvo
