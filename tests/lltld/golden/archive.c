// archive=1 mode=0 A.c:1 b.x.c:33 nnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnn:0 TimerPolicy=1 SignalPolicy=1 rootpath=/cov LLT_DISABLE_SOCKET=1
/*********************************************************
覆盖率工具自动生成的代码
*********************************************************/

#include <stdio.h> 
#include <stdlib.h> 
#include <errno.h> 

#ifdef __cplusplus
extern "C" {
#endif

extern void* QMR_CreateCoverageListExt(const char *pModName, const char* covdbpath,
    unsigned long iCount, int iClass);
extern int QMR_AddCoverageBuf(void *pMod, unsigned int iFileId, char *pFileName,
    unsigned int *pCovBuf, unsigned int iBufSize, unsigned int iInstSize);
extern void QMR_DumpModuleCovdata(char* modulename); 
extern void TUSK_CovSetTimerPolicy(int time_interval);    
extern void TUSK_CovSetSignalPolicy(int signal_no);   
extern void TUSK_CovSetlltcovRootpath(const char* rootpath);   
extern void TUSK_CovSetSupportVbsFlag(unsigned int uiFlag);   
extern void TUSK_CovSetCompilePolicy(int overlappedCompile);   
extern int  QMRGetTargetState();
extern void QMRSetTargetState(int state);
extern int  QMRInit(int iType, char *pProjName);
extern int  ZKT_ServerInit(unsigned int iHostPort);

unsigned int g_QMRCovData_A[1] = {0};
unsigned int g_QMRCovData_b.x[2] = {0};
unsigned int g_QMRCovData_nnnnnnnnnnnnnnnnnnnnnnnnnnnnnnn[1] = {0};

void ZJ_Start_my_mod_1()
{
    TUSK_CovSetCompilePolicy(1);
    TUSK_CovSetTimerPolicy(5);
    TUSK_CovSetSignalPolicy(9);
    TUSK_CovSetSupportVbsFlag(1);
    TUSK_CovSetlltcovRootpath("/cov");
    void *pMod = QMR_CreateCoverageListExt("my-mod-1", "w", 3, 1);
    if(NULL == pMod)
    {
      return;
    }

    QMR_AddCoverageBuf(pMod, 0, (char*)"A.c", (unsigned int *)g_QMRCovData_A, 
        4, 1);
    QMR_AddCoverageBuf(pMod, 1, (char*)"b.x.c", (unsigned int *)g_QMRCovData_b.x, 
        8, 33);
    QMR_AddCoverageBuf(pMod, 2, (char*)"nnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnn", (unsigned int *)g_QMRCovData_nnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnn, 
        0, 0);
		if(!QMRInit(0, (char*)"{\"projectname\":\"demo\",\"buid\":\"B\"}"))
		{
			printf("Call QMRInit failed!");
			return;
		}

	if(!QMRGetTargetState())
	{
		QMRSetTargetState(1);
	}

    return ;
}
#ifdef __cplusplus
}
#endif


__attribute ((constructor)) void tusk_init_my_mod_1(void)
{
    ZJ_Start_my_mod_1();
    errno = 0;
}
__attribute ((destructor)) void tusk_fini_my_mod_1(void)
{
    QMR_DumpModuleCovdata((char*)"my_mod_1");
    errno = 0;
}
