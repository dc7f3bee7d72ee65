#include "OssShell.h"

int main(int argc, char **argv)
{
    return ossRunShell(argc, argv);
}
