// The supported-array rules of the driver's parameter file: `add`, `del` and
// `show supportarraylist`.
//
// At the prompt everything after "supportarraylist" arrives as one word
// ("vendor=A product=Box Q"), from the program's command line as separate
// words; both are joined and read the same way, so a product with blanks
// works either way.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>

#include "cli/cli.h"
#include "cli/cli_command.h"
#include "cli/cli_helptext.h"
#include "cli/cli_objects.h"
#include "cli/cli_operlog.h"
#include "mpi/mpi_scope.h"
#include "uia/uia.h"
#include "uil/uil_drvcfg.h"
#include "uil/uil_oper.h"

namespace {

constexpr char kRiskPrompt[] =
    "Please confirm that this model of disk array can be managed by the Corvane. Otherwise, LUNs of the disk "
    "array cannot be accessed.\nAre you sure you want to continue? [y,n]: ";
constexpr char kSanbootRefusal[] = "The command is not supported for this system when boot from san\n";

struct VendorArgs {
    std::string vendor;
    std::string product;
    std::string driver;
    bool hasVendor = false;
    bool hasProduct = false;
    bool hasDriver = false;
};

struct KeyRow {
    std::string_view key;  // with its "="
    std::string VendorArgs::*value;
    bool VendorArgs::*seen;
};
constexpr KeyRow kKeys[] = {
    {"vendor=", &VendorArgs::vendor, &VendorArgs::hasVendor},
    {"product=", &VendorArgs::product, &VendorArgs::hasProduct},
    {"driver=", &VendorArgs::driver, &VendorArgs::hasDriver},
};

// The key starting at `at` of `text` when one does (at the start or after a
// blank), else null.
const KeyRow* keyAt(std::string_view text, size_t at)
{
    if (at != 0 && text[at - 1] != ' ') {
        return nullptr;
    }
    for (const KeyRow& row : kKeys) {
        if (text.substr(at).starts_with(row.key)) {
            return &row;
        }
    }
    return nullptr;
}

// Reads "key=value ..." where a value runs up to the next key; the blanks
// separating a value from the next key are dropped, those inside it kept.
// False for text before the first key, a key given twice or an unknown key
// set (only the keys in `allowed` count).
bool parseVendorArgs(const MPCLI_Command& command, size_t allowed, VendorArgs* out)
{
    std::string text;
    for (const MPCLI_Word& word : command.args()) {
        if (!text.empty()) {
            text += ' ';
        }
        text += word.raw;
    }
    std::string_view view(text);
    const KeyRow* current = nullptr;
    size_t valueStart = 0;
    auto finish = [&](size_t end) {
        if (current != nullptr) {
            std::string_view value = view.substr(valueStart, end - valueStart);
            while (!value.empty() && value.back() == ' ') {
                value.remove_suffix(1);
            }
            out->*(current->value) = std::string(value);
        }
    };
    for (size_t at = 0; at < view.size(); ++at) {
        const KeyRow* row = keyAt(view, at);
        if (row == nullptr) {
            if (current == nullptr && view[at] != ' ') {
                return false;
            }
            continue;
        }
        if (static_cast<size_t>(row - kKeys) >= allowed || out->*(row->seen)) {
            return false;
        }
        finish(at);
        out->*(row->seen) = true;
        current = row;
        valueStart = at + row->key.size();
        at = valueStart - 1;
    }
    finish(view.size());
    return out->hasVendor && out->hasProduct;
}

// A refused vendor, product or driver text, said before anything is asked.
bool textsValid(const VendorArgs& args)
{
    struct Check {
        const char* name;
        const std::string& text;
        size_t max;
    };
    const Check checks[] = {
        {"vendor", args.vendor, UIL_VENDOR_ID_LEN},
        {"product", args.product, UIL_PRODUCT_ID_LEN},
        {"driver", args.driver, UIL_VENDOR_DRIVER_LEN},
    };
    for (const Check& c : checks) {
        if (&c.text == &args.driver && !args.hasDriver) {
            continue;
        }
        if (UIL_CheckVendorText(c.name, c.text.c_str(), c.max) != MPI_RET_SUCCESS) {
            MPCLI_Print("Error: Invalid %s \"%s\": it must have 1 to %zu characters, none of them a double quote, "
                        "\";\", \"#\", \"=\", \",\" or a control character.\n",
                        c.name, c.text.c_str(), c.max);
            return false;
        }
    }
    return true;
}

// What a failed add or del says.
void printVendorError(uint32_t code, const VendorArgs& args)
{
    switch (code) {
        case UIL_RET_DRVCFG_NO_FILE:
            MPCLI_Print("Error: The driver parameter file %s is missing or cannot be read; nothing was changed.\n",
                        UIL_DRVCFG_PATH);
            break;
        case UIL_RET_VENDOR_EXIST:
            MPCLI_Print("Error: The array model (vendor=%s, product=%s) is already in the supported array list.\n",
                        args.vendor.c_str(), args.product.c_str());
            break;
        case UIL_RET_VENDOR_NOT_EXIST:
            MPCLI_Print("Error: The array model (vendor=%s, product=%s) is not in the supported array list.\n",
                        args.vendor.c_str(), args.product.c_str());
            break;
        case UIL_RET_VENDOR_NOTIFY_FAIL:
            MPCLI_Print("Warning: The supported array list in %s was changed, but the driver could not be told; "
                        "the change takes effect when the driver reloads its configuration.\n",
                        UIL_DRVCFG_PATH);
            break;
        case MPI_RET_INVALID_PARAM:
            MPCLI_Print("Error: The vendor, product or driver text is invalid; nothing was changed.\n");
            break;
        default:
            MPCLI_Print("Error: Failed to save %s; it is unchanged.\n", UIL_DRVCFG_PATH);
            break;
    }
}

// Shared by add and del: parse, check, refuse on a SAN-boot host, confirm,
// then run `change` and log it. A declined prompt changes nothing and is
// no failure.
template <typename Change>
uint8_t changeRule(const MPCLI_Command& command, const char* verb, const char* help, size_t allowedKeys,
                   uint32_t eventId, const char* done, Change change)
{
    VendorArgs args;
    if (!parseVendorArgs(command, allowedKeys, &args)) {
        MPCLI_Print("Error: Invalid input!\n Usage:\n%s", help);
        return MPCLI_RESULT_FAIL;
    }
    if (!textsValid(args)) {
        return MPCLI_RESULT_FAIL;
    }
    if (INTF_UIA_CliQVXSanbootCheck() == 1) {
        MPCLI_Print("%s", kSanbootRefusal);
        return MPCLI_RESULT_FAIL;
    }
    if (MPCLI_RiskPrompt(kRiskPrompt) != 1) {
        // The operator chose not to go on: nothing failed.
        UIL_ERR("User input \"n\" to interrupt the command executing");
        MPCLI_Print("The command was cancelled; nothing was changed.\n");
        return MPCLI_RESULT_OK;
    }
    uint32_t ret = change(args);
    uint8_t result = ret == MPI_RET_SUCCESS ? MPCLI_RESULT_OK : MPCLI_RESULT_FAIL;
    if (result == MPCLI_RESULT_OK) {
        MPCLI_Print("Succeeded in %s the array model (vendor=%s, product=%s).\n", done, args.vendor.c_str(),
                    args.product.c_str());
    } else {
        printVendorError(ret, args);
    }
    UilOperLogPara record{};
    UIL_VendorOperRecord(args.vendor.c_str(), args.product.c_str(), &record);
    MPCLI_OperLog(verb, command, eventId, result, &record);
    return result;
}

}  // namespace

uint8_t MPCLI_AddSupportArrayList(const MPCLI_Command& command)
{
    return changeRule(command, "add", HELP_ADD_SUPPORTARRAYLIST, 3, UIL_OPER_ADD_VENDOR, "adding",
                      [](const VendorArgs& a) {
                          return INTF_UIL_AddVendor(a.vendor.c_str(), a.product.c_str(),
                                                    a.hasDriver ? a.driver.c_str() : nullptr);
                      });
}

uint8_t MPCLI_DelSupportArrayList(const MPCLI_Command& command)
{
    return changeRule(command, "del", HELP_DEL_SUPPORTARRAYLIST, 2, UIL_OPER_DEL_VENDOR, "deleting",
                      [](const VendorArgs& a) { return INTF_UIL_DelVendor(a.vendor.c_str(), a.product.c_str()); });
}

uint8_t MPCLI_ShowSupportArrayList(const MPCLI_Command& command)
{
    if (command.size() > 1) {
        MPCLI_Print("Error: Invalid input!\n Usage:\n%s", HELP_SHOW_SUPPORTARRAYLIST);
        return MPCLI_RESULT_FAIL;
    }
    MPI_ListNode head;
    MPI_ListInit(&head);
    uint32_t count = 0;
    uint32_t ret = INTF_UIL_StartShowVendor(&head, &count);
    MPI_Ended<INTF_UIL_EndShowVendor> owner(&head);
    if (ret == UIL_RET_DRVCFG_NO_FILE) {
        MPCLI_Print("Error: The driver parameter file %s is missing or cannot be read.\n", UIL_DRVCFG_PATH);
        return MPCLI_RESULT_FAIL;
    }
    if (ret != MPI_RET_SUCCESS) {
        MPCLI_PrintfInternalErrorInfo(ret);
        return MPCLI_RESULT_FAIL;
    }
    if (count == 0) {
        MPCLI_Print("The supported array list is empty.\n");
        return MPCLI_RESULT_OK;
    }
    // Widths: the longest cell of each column, at least its header.
    int widths[3] = {6, 7, 6};
    for (const MPI_ListNode* n = head.next; n != &head; n = n->next) {
        const UilVendorRule* r = MPI_ListEntry<UilVendorRule>(n);
        widths[0] = std::max(widths[0], static_cast<int>(std::strlen(r->vendor)));
        widths[1] = std::max(widths[1], static_cast<int>(std::strlen(r->product)));
        widths[2] = std::max(widths[2], static_cast<int>(std::strlen(r->driver)));
    }
    std::string table;
    const std::string dash(static_cast<size_t>(widths[0] + widths[1] + widths[2] + 4), '-');
    char line[256];
    table += dash + "\n";
    (void)std::snprintf(line, sizeof(line), "%-*s  %-*s  %s\n", widths[0], "Vendor", widths[1], "Product", "Driver");
    table += line;
    table += dash + "\n";
    for (const MPI_ListNode* n = head.next; n != &head; n = n->next) {
        const UilVendorRule* r = MPI_ListEntry<UilVendorRule>(n);
        (void)std::snprintf(line, sizeof(line), "%-*s  %-*s  %s\n", widths[0], r->vendor, widths[1], r->product,
                            r->driver);
        table += line;
    }
    table += dash + "\n";
    MPCLI_Print("%s", table.c_str());
    return MPCLI_RESULT_OK;
}
