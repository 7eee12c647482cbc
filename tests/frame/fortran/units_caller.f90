! A Fortran caller built with 64-bit default integers: character arguments with hidden lengths, IFAIL,
! logical results, records written, appended and read back. Stops with a non-zero code on any mismatch.
program units_caller
  implicit none
  integer :: ifail, nerr, failures
  character(len=40) :: rec
  character(len=*), parameter :: path = 'vek_fortran_units.txt'

  failures = 0
  call x04aaf(0, nerr)
  call check(nerr == 6, 'error unit starts at 6')

  ifail = 1
  call x04acf(21, path, 1, ifail)
  call check(ifail == 0, 'open for writing')
  call x04baf(21, 'written from Fortran')
  ifail = 1
  call x04adf(21, ifail)
  ifail = 1
  call x04acf(21, path, 2, ifail)
  call x04baf(21, 'appended')
  call x04adf(21, ifail)

  ifail = 1
  call x04acf(22, path, 0, ifail)
  call check(ifail == 0, 'open for reading')
  call x04bbf(22, rec, ifail)
  call check(ifail == 0 .and. rec == 'written from Fortran', 'first record')
  call x04bbf(22, rec, ifail)
  call check(ifail == 0 .and. rec == 'appended', 'second record')
  ifail = 1
  call x04bbf(22, rec, ifail)
  call check(ifail == 1, 'end of file gives IFAIL = 1')
  call x04adf(22, ifail)

  ifail = 1
  call x04acf(23, path, 3, ifail)
  call check(ifail == 1, 'MODE = 3 gives IFAIL = 1')

  if (failures > 0) then
    print '(i0, a)', failures, ' failed'
    error stop 1
  end if
  print '(a)', '6 passed, 0 failed'

contains

  subroutine check(ok, what)
    logical, intent(in) :: ok
    character(len=*), intent(in) :: what
    if (.not. ok) then
      print '(2a)', 'FAILED: ', what
      failures = failures + 1
    end if
  end subroutine check

end program units_caller
