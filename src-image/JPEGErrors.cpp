#include "JPEGErrors.h"

void my_error_exit(j_common_ptr jpeg)
{
    jpeg->err->output_message(jpeg);
    std::longjmp(reinterpret_cast<my_error_mgr*>(jpeg->err)->setjmp_buffer, 1);
}

jpeg_error_mgr* installErrors(my_error_mgr& errors)
{
    jpeg_std_error(&errors.pub);
    errors.pub.error_exit = my_error_exit;
    return &errors.pub;
}
